#pragma once

// The window of the play list, and its one store: row i of `playList_Item` (names) and of `List1`
// (full paths, each at most once) is one track. Insertions and removals happen in both at the same
// row, first in `playList_Item`.

#include "playlist/playList_Form.design.h"

#include "base/run_time_error.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora {

class Velmora;

// What an operation on rows acts on: by path, so that it stays the same whatever the list does
// before the operation comes to it.
struct ListChoice {
    std::vector<std::u16string> selected; // in the order of the list
    std::u16string current;               // empty: none
};

class playList_Form : public playList_Form_Design {
public:
    explicit playList_Form(Velmora &app);
    void load();

    // Rows that the list shows; doLrcForm reads this one, too.
    std::int16_t visibleRows = 17;

    // Enables or disables everything that starts an operation on the list; brackets each long one.
    void controlEnabled(bool flag);

    // Reads the play list file again.
    void afresh_Load_Click();

    // Hides the window and docks.
    void close_Click();

    // The choice as it is now.
    ListChoice choice() const;
    // For an entry of the list's menu: the choice that the menu was opened for, since tracks begin
    // and select their rows while it is open; without a menu, the choice as it is now.
    ListChoice takeMenuChoice();

    // Each operation on rows acts on a choice, or on the choice as it is now.

    // --- playing ---------------------------------------------------------------------------
    // Plays the current row.
    void playThis();
    void playThis(const ListChoice &chosen);
    // The row under a point of the list; row 0 for a point below the last row.
    std::int32_t rowAtPoint(Twips x, Twips y) const;

    // --- adding ----------------------------------------------------------------------------
    void addFile_Click();
    void addDir_Click();
    // Files and folders dropped on the list at a height.
    void filesDropped(const std::vector<std::u16string> &paths, Twips y);
    // Files and folders from outside: as if dropped, but behind the last row.
    void filesOpened(const std::vector<std::u16string> &paths);

    // --- removing --------------------------------------------------------------------------
    void delIndx_Click();
    void delIndx_Click(const ListChoice &chosen);
    void delAll_Click();
    // Mode 0: from the list; mode 1: from the disk too, with a report; `all`: every row first.
    void delOne(std::int16_t mode, bool all);
    void delOne(std::int16_t mode, bool all, const ListChoice &chosen);

    // --- renaming, searching, copying --------------------------------------------------------
    void Alter_Click();
    void Alter_Click(const ListChoice &chosen);
    void alter_Jieguo(); // the input box said OK
    void Search_Click();
    void search_Jieguo(); // the input box said OK
    void to_Folder();
    void to_Folder(const ListChoice &chosen);
    void open_Folder();
    void open_Folder(const ListChoice &chosen);

private:
    // What `body` raised, if anything.
    template <typename Body> static std::optional<RunTimeError> trapped(Body &&body) {
        try {
            body();
            return std::nullopt;
        } catch (const RunTimeError &error) {
            return error;
        }
    }
    void showError(const std::optional<RunTimeError> &error, std::u16string_view heading);
    void showProgress(std::u16string_view text, std::u16string_view heading);
    void hideProgress();
    void comeForward();
    void setHandlers();
    void setScrollHandlers();
    void setDragHandlers();
    void endDrag(const forms::MouseEvent &event);
    void setMenuHandlers();
    void openMenu();
    void playRow(std::int16_t row);
    void askForName(std::int16_t row);

    void takeFile(const std::u16string &path);
    void deselectAll();
    void selectNamesakes(const std::u16string &stem, bool containing, bool pumping);
    void append(const std::u16string &path);
    void answerEvents(std::optional<RunTimeError> &pending);
    std::vector<std::u16string> walkFolders(const std::u16string &first,
                                            std::optional<RunTimeError> &pending);
    void addFilesOf(const std::u16string &folder, bool passing,
                    std::optional<RunTimeError> &pending);
    void addDroppedFolder(const std::u16string &folder);
    void takeDropped(const std::vector<std::u16string> &paths, std::optional<Twips> y);
    void dropOne(const std::u16string &path, std::optional<Twips> y);
    bool isFolderChoice(std::u16string_view folder) const;

    // The paths of the selected rows, or of all, in the order of the list.
    std::vector<std::u16string> chosenPaths(bool all) const;
    using Paths = std::unordered_set<std::u16string>;
    // The lowest row that is selected and was chosen, or -1.
    std::int32_t lowestOf(const Paths &chosen) const;
    std::int32_t countOf(const Paths &chosen) const;
    bool isSure();
    void removeRow(std::int32_t row);
    void removeOne(std::int32_t row, std::int16_t mode, std::u16string &report, bool last);
    void writeDeleteReport(const std::u16string &report);
    void renameChosen();
    void askInBox(std::int16_t mode, std::u16string_view heading, std::u16string_view prompt,
                  std::u16string_view text);

    Velmora &app_;
    std::optional<ListChoice> pointed_; // from the press of the right button to the menu's entry
    std::uint32_t walk_ = 0;            // identity of the folder walk going on

    // Alive from the start of a search or renaming to its end.
    std::u16string findText_;
    std::u16string alterPath_;   // of the row that is renamed, whichever is current by then
    std::u16string alterRest_;   // the name behind its first "."
    std::u16string alterPrefix_; // the name up to and including its first "."
    std::u16string alterFolder_; // with the trailing separator
    std::u16string alterTail_;   // the last four units of the path
    std::u16string alterNew_;
};

} // namespace velmora
