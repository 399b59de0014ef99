// The key table that the main window and the play list share.

#include "ui/formSet.h"

#include "base/text.h"
#include "playback/Main.h"
#include "playback/VideoScreen_Form.h"
#include "playback/list_button.h"
#include "playback/player.h"
#include "playback/startLoad_Form.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "ui/aboutForm.h"
#include "velmora.h"

namespace velmora {

namespace {

enum class From : std::uint8_t { Main, List, Both };
enum class With : std::uint8_t { Anything, Ctrl, ShiftAlone };

constexpr std::int16_t keyEnter = 13;
constexpr std::int16_t keyEscape = 27;
constexpr std::int16_t keyDelete = 46;
constexpr std::int16_t keyA = 65;
constexpr std::int16_t keyS = 83;
constexpr std::int16_t keyF2 = 113;
constexpr std::int16_t keyF3 = 114;
constexpr std::int16_t keyF4 = 115;
constexpr std::int16_t keyF5 = 116;
constexpr std::int16_t keyF6 = 117;
constexpr std::int16_t keyF7 = 118;
constexpr std::int16_t keyF8 = 119;
constexpr std::int16_t keyF9 = 120;
constexpr std::int16_t keyF10 = 121;
constexpr std::int16_t keyF11 = 122;
constexpr std::int16_t keyF12 = 123;

struct Pressed {
    std::u16string_view formName;
    ListChoice chosen; // for Delete alone
};
using Work = void (*)(Velmora &, const Pressed &);

// A track that begins meanwhile selects its row alone, so all are selected once more at the end.
void selectAll(Velmora &app, const Pressed &) {
    velmora::playList_Form &list = app.playList_Form();
    list.controlEnabled(false);
    for (std::int32_t row = 0; row < list.playList_Item.listCount(); ++row) {
        list.playList_Item.setSelected(row, true);
        app.platform().windows.DoEvents();
    }
    for (std::int32_t row = 0; row < list.playList_Item.listCount(); ++row) {
        list.playList_Item.setSelected(row, true);
    }
    list.controlEnabled(true);
}

void showAbout(Velmora &app, const Pressed &key) {
    app.playList_Form().setEnabled(false);
    app.Main().setEnabled(false);
    app.aboutForm().show_For(key.formName);
}

void hideList(Velmora &app, const Pressed &) {
    app.playList_Form().hide();
    markListShown(app.Main(), false);
    app.Main().get_Focus();
}

void toggleVideo(Velmora &app, const Pressed &) {
    if (!app.Main().videoScreen_Button.visible()) {
        return;
    }
    app.Main().videoScreen_Button_Click();
    if (app.VideoScreen_Form().visible()) {
        app.formSet().set_Topmost(app.VideoScreen_Form().hWnd(), true);
    }
}

} // namespace

struct formSet::Key {
    From from;
    std::int16_t code;
    With with;
    Work work;
};

// Every row is tested, in this order; a key may match more than one.
void formSet::form_KeyDown(std::int16_t keyCode, std::int16_t shift, std::u16string_view formName) {
    static constexpr Key keys[] = {
        {From::Main, keyF7, With::Anything,
         [](Velmora &app, const Pressed &) { app.Main().openFile_Button_Click(); }},
        {From::Main, keyF2, With::Anything,
         [](Velmora &app, const Pressed &) { app.Main().playButton_Click(); }},
        // With Shift both of these match: the disk first, and the second asks its question again,
        // for the same rows.
        {From::List, keyDelete, With::ShiftAlone,
         [](Velmora &app, const Pressed &key) {
             app.playList_Form().delOne(1, false, key.chosen);
         }},
        {From::List, keyDelete, With::Anything,
         [](Velmora &app, const Pressed &key) {
             app.playList_Form().delOne(0, false, key.chosen);
         }},
        {From::List, keyA, With::Ctrl, selectAll},
        {From::List, keyF7, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().addFile_Click(); }},
        {From::List, keyEnter, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().playThis(); }},
        {From::List, keyF2, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().playThis(); }},
        {From::Both, keyEscape, With::Anything,
         [](Velmora &app, const Pressed &) { app.startLoad_Form().unload(); }},
        {From::Both, keyF12, With::Anything, showAbout},
        {From::Both, keyS, With::Ctrl,
         [](Velmora &app, const Pressed &) { app.Main().playSet_Button_Click(); }},
        {From::Both, keyF8, With::Anything, hideList},
        {From::Both, keyF11, With::Anything, toggleVideo},
        {From::Both, keyF6, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().next_Sub(directionNext); }},
        {From::Both, keyF5, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().next_Sub(directionPrevious); }},
        {From::Both, keyF4, With::Anything,
         [](Velmora &app, const Pressed &) {
             app.player().close_Sub(0);
             app.Main().stop_Sub();
         }},
        {From::Both, keyF3, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().pause_Sub(); }},
        {From::Both, keyF10, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().to_Folder(); }},
        {From::Both, keyF9, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().open_Folder(); }},
    };
    // While an operation on the list is at work all keys are still but the one that ends the
    // program.
    if (ListWork::isGoingOn(app_) && keyCode != keyEscape) {
        return;
    }
    const bool fromMain = equalsIgnoringCase(formName, u"main");
    const bool fromList = equalsIgnoringCase(formName, u"playlist_Form");
    const Pressed pressed{formName,
                          keyCode == keyDelete ? app_.playList_Form().choice() : ListChoice()};
    for (const Key &key : keys) {
        const bool here = key.from == From::Main   ? fromMain
                          : key.from == From::List ? fromList
                                                   : fromMain || fromList;
        const bool held =
            key.with == With::Anything ||
            (key.with == With::Ctrl ? (shift & forms::ctrlMask) != 0 : shift == forms::shiftMask);
        if (here && key.code == keyCode && held) {
            key.work(app_, pressed);
        }
    }
}

} // namespace velmora
