#pragma once

// The window in which the user searches songs on the Internet, and fetches one with progress. Its
// texts stay Chinese in every language.
//
// Row i of the three lists is one link: `search_Song_List` what is shown, `List1` the link and
// `List2` the packed record of its song, both as they were found, in upper case. A record with too
// few fields ends the program.

#include "network/search_Song_Internet_Form.design.h"
#include "network/zkWininetDown.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class Velmora;

class search_Song_Internet_Form : public search_Song_Internet_Form_Design {
public:
    explicit search_Song_Internet_Form(Velmora &app);
    void load();

    std::int16_t visibleRows = 11; // rows that the list shows

    // Prepares the window each time it is shown: an empty list, and what the present track's tag or
    // name gives to look for.
    void startLoad();

    // The four controls that must not start a second transfer.
    void setControlsEnabled(bool flag);
    // Adds a file to the play list, or selects its namesakes there, and plays it in any case.
    void play_Downloaded(const std::u16string &path);

    void search_Button_Click();
    void save_Click();        // into the play cache folder
    void anotherSave_Click(); // to a path that the user chooses
    void goto_Internet_Click();
    void downFileStop_Click(); // stops the transfer and removes its part, while there is one
    void close_Click();        // hides; a transfer is stopped and leaves its part

    // The client, with its default properties but for `URL` and `FileName`.
    zkWininetDown wd;

private:
    // What happens to the song that was fetched.
    enum class Then { Nothing, Play };

    void setHandlers();
    void search(const std::u16string &name, const std::u16string &singer);
    void say(std::u16string_view text); // behind the window's name in its title
    void sayReady();
    bool chosenOrComplain();
    void readRow();
    void fetchIntoCache(Then then);
    void fetch(const std::u16string &target, bool canWrite, bool nameIsValid, Then then);
    bool mayReplace(const std::u16string &target);
    void transfer(const std::u16string &target, Then then);
    void showTransfer();
    void readRecord(std::int32_t row, std::size_t lastField);
    void readFileName(std::int32_t row);
    void hover(Twips y);
    void showHovered();

    void wd_Progress(double total, double received, double speed);
    void wd_DownloadEnd(bool success);
    void wd_Status(std::int32_t code);
    void wd_Error(std::int32_t code);

    Velmora &app_;
    bool isReceiving_ = false; // a transfer runs: its file is a part
    std::u16string hintText_;
    std::vector<std::u16string> songRecord_; // the row's record
    std::vector<std::u16string> linkParts_;  // the row's link
    std::u16string songFileName_;            // worked out of the two
    std::u16string songAddress_;             // the link as it is fetched
    std::u16string songName_;
    std::u16string songSinger_;
    std::u16string songAlbum_;
    std::u16string songFormat_;
    std::u16string songSize_;
    std::u16string songRate_;
    std::u16string transferText_; // being made: a transfer tells of itself at every kilobyte
};

} // namespace velmora
