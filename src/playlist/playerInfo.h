#pragma once

// The ID3v1 tag of a file, and the names of the genres. The boxes of another_PlayInfo_Form are the
// store of the tag read last.

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

class Velmora;

class playerInfo {
public:
    explicit playerInfo(Velmora &app);

    // Fills the six boxes from the tag in the last 128 bytes. True when a tag was read, and when
    // the file does not exist (the boxes stay then); false when the file is too short, has no tag
    // or cannot be read. The boxes of an untagged file keep the text they had.
    bool readId3v1(std::u16string_view path);

    // Builds the table of genre names; once, at start-up.
    void buildGenreTable();

    // The box text for a genre number as the reader counts them: 0 the first entry, n the entry
    // n - 1, nothing beyond 148, a negative number the entry of its bitwise complement.
    std::u16string genreName(std::int32_t code) const;

private:
    bool readTag(std::u16string_view path);
    void showTexts(std::string_view tag);
    void showGenre(unsigned char code);

    Velmora &app_;
    std::u16string_view genreTable_; // names joined by "|"; empty until built
};

} // namespace velmora
