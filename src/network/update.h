#pragma once

// The program's own update: compares the running version with a file that the maker serves and, on
// the user's word, fetches the new program file, lays it beside the running one under a name of its
// own, starts it and ends the program. Nothing is replaced. Everything blocks while it runs.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class Velmora;

class update {
public:
    explicit update(Velmora &app);

    // The whole check. One that the user did not start says nothing where there is nothing to do.
    // An information file that cannot be had or used is silent either way.
    void check_Update(bool userStarted);

    // Fetches the information file into the temporary folder.
    bool fetch_UpdateInfo();
    // Reads the file and deletes it. True when it names a version and an address.
    bool read_UpdateInfo(std::u16string_view file);
    // Whether a version of three numbers is above the running program's. Numbers are compared, not
    // texts; a version of fewer numbers than the comparison needs is none.
    bool is_NewVersion(std::u16string_view version) const;
    // Fetches the new program file into the program's folder.
    bool fetch_NewProgram();

    std::u16string new_Version;
    std::u16string new_DownloadUrl;
    std::u16string update_TmpFile;
    std::u16string update_Notes_Chinese, update_Notes_English;
    std::u16string update_Notes_French, update_Notes_Japanese;
    std::u16string update_Notes; // of the language in force, then as shown
    std::vector<std::u16string> update_NotesLines;
    std::int16_t update_LineIndex = 0;
    std::int32_t update_Result = 0; // of the last download

private:
    // What one check found, and asks about.
    struct Offer {
        std::u16string version;
        std::u16string address;
    };
    std::u16string title() const;
    void say(std::u16string_view text);
    void takeNotes();
    bool askForDownload(const Offer &offer);
    bool fetchProgram(const Offer &offer);
    void startNewProgram(const Offer &offer);
    static std::u16string newProgramName(const Offer &offer);
    std::u16string newProgramPath(const Offer &offer) const;
    std::u16string value(std::u16string_view file, std::u16string_view section,
                         std::u16string_view key) const;

    Velmora &app_;
};

} // namespace velmora
