#pragma once

// The desktop lyric's window, and the holder of the lyric in memory. The current line is found by
// searching the lines of `List1` for the text of the clock; it reaches every window through
// `nowLrcLine`.

#include "lyrics/lrcForm.design.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class lrcForm : public lrcForm_Design {
public:
    explicit lrcForm(Velmora &app);
    void load();

    // Replaces the lyric in memory by the file's. A blank path, and a file without lines, mean no
    // lyric; the outcome is in `hasLrc`. A file that cannot be read raises, and whatever was read
    // of it stays in List1 while `hasLrc` stays as it was. A tag that the file does not have keeps
    // its value.
    void startLoad(std::u16string_view path);

    // --- the lyric (its lines are the rows of List1) ---------------------------------------------
    std::u16string lrcPath;
    bool hasLrc = false;
    std::uint32_t readings = 0; // calls of startLoad
    std::u16string nowLrcLine;  // the current line, or a status text
    std::u16string lrcFullText; // all words without labels, each line ended by CR LF
    std::u16string lrcTi, lrcAr, lrcAl, lrcBy;

    // --- texts of the language in force ----------------------------------------------------------
    std::u16string noLrcText;
    std::u16string lrcMissText;    // a track without a lyric
    std::u16string lrcWaitText;    // after a seek, until the next line is found
    std::u16string lrcLoadingText; // while a lyric is read

    // --- the desktop line ------------------------------------------------------------------------
    bool desktopLrcOn = false;       // switched on by the user
    bool desktopLrcAutoOpen = false; // opens by itself with each lyric
    std::int16_t lineIndex = -1;     // answer of the last search
    std::u16string lrcShownLine;     // the line for which the marquee last restarted

    // The lowest row of List1 that contains the text anywhere, or -1.
    std::int16_t ListIndex(std::u16string_view text) const;
    // The font that the line is to have. `position` makes it smaller where a line of it would be
    // higher than the screen.
    void dress(const forms::Font &font) { givenFont_ = font; }
    // Places the window across the screen above the task bar, and brings it to the top.
    void position();

private:
    void tick();
    void readFile(std::u16string_view path);
    void takeLine(const std::u16string &line);
    void showFacts();
    void forgetLyric();
    void followLyric();
    void showLine();
    forms::Font fittingFont(Twips room) const;

    Velmora &app_;
    forms::Font givenFont_;
    bool isCentred_ = false; // the line was last shown centred, in this font
    forms::Font centredFont_;
};

} // namespace velmora
