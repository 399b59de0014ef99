// The key table that the main window and the play list share.

#include "ui/formSet.h"

#include "base/text.h"
#include "platform/forms/keys.h"
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
    for (std::int32_t row = 0; row < list.playList_Item.listCount(); ++row)
        list.playList_Item.setSelected(row, true);
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
    if (!app.Main().videoScreen_Button.visible())
        return;
    app.Main().videoScreen_Button_Click();
    if (app.VideoScreen_Form().visible())
        app.formSet().set_Topmost(app.VideoScreen_Form().hWnd(), true);
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
        {From::Main, forms::keyF7, With::Anything,
         [](Velmora &app, const Pressed &) { app.Main().openFile_Button_Click(); }},
        {From::Main, forms::keyF2, With::Anything,
         [](Velmora &app, const Pressed &) { app.Main().playButton_Click(); }},
        // With Shift both of these match: the disk first, and the second asks its question again,
        // for the same rows.
        {From::List, forms::keyDelete, With::ShiftAlone,
         [](Velmora &app, const Pressed &key) {
             app.playList_Form().delOne(1, false, key.chosen);
         }},
        {From::List, forms::keyDelete, With::Anything,
         [](Velmora &app, const Pressed &key) {
             app.playList_Form().delOne(0, false, key.chosen);
         }},
        {From::List, forms::keyA, With::Ctrl, selectAll},
        {From::List, forms::keyF7, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().addFile_Click(); }},
        {From::List, forms::keyEnter, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().playThis(); }},
        {From::List, forms::keyF2, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().playThis(); }},
        {From::Both, forms::keyEscape, With::Anything,
         [](Velmora &app, const Pressed &) { app.startLoad_Form().unload(); }},
        {From::Both, forms::keyF12, With::Anything, showAbout},
        {From::Both, forms::keyS, With::Ctrl,
         [](Velmora &app, const Pressed &) { app.Main().playSet_Button_Click(); }},
        {From::Both, forms::keyF8, With::Anything, hideList},
        {From::Both, forms::keyF11, With::Anything, toggleVideo},
        {From::Both, forms::keyF6, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().next_Sub(directionNext); }},
        {From::Both, forms::keyF5, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().next_Sub(directionPrevious); }},
        {From::Both, forms::keyF4, With::Anything,
         [](Velmora &app, const Pressed &) { app.Main().closeAndStop(); }},
        {From::Both, forms::keyF3, With::Anything,
         [](Velmora &app, const Pressed &) { app.player().pause_Sub(); }},
        {From::Both, forms::keyF10, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().to_Folder(); }},
        {From::Both, forms::keyF9, With::Anything,
         [](Velmora &app, const Pressed &) { app.playList_Form().open_Folder(); }},
    };
    // While an operation on the list is at work all keys are still but the one that ends the
    // program.
    if (ListWork::isGoingOn(app_) && keyCode != forms::keyEscape)
        return;
    const bool fromMain = equalsIgnoringCase(formName, u"main");
    const bool fromList = equalsIgnoringCase(formName, u"playlist_Form");
    const Pressed pressed{formName, keyCode == forms::keyDelete ? app_.playList_Form().choice()
                                                                : ListChoice()};
    for (const Key &key : keys) {
        const bool here = key.from == From::Main   ? fromMain
                          : key.from == From::List ? fromList
                                                   : fromMain || fromList;
        const bool held =
            key.with == With::Anything ||
            (key.with == With::Ctrl ? (shift & forms::ctrlMask) != 0 : shift == forms::shiftMask);
        if (here && key.code == keyCode && held)
            key.work(app_, pressed);
    }
}

} // namespace velmora
