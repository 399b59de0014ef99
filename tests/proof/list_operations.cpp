// What changes the play list, the tracks in it, and the report of a deletion.

#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/listControl_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "tests/proof/world.h"

namespace velmora::proof {

namespace {

void started(World &world) { world.start(); }

playList_Form &listOf(World &world) { return world.app.playList_Form(); }

void choose(World &world, std::initializer_list<std::u16string_view> files) {
    world.start();
    forms::ListBox &names = listOf(world).playList_Item;
    for (std::int32_t row = 0; row < names.listCount(); ++row)
        names.setSelected(row, false);
    for (const std::u16string_view file : files)
        names.setSelected(listOf(world).List1.find(world.path(file)), true);
}

// --- the list ----------------------------------------------------------------------------------

void addOneInMemory(World &world) {
    world.start();
    listOf(world).playList_Item.addItem(u"Eta");
    listOf(world).List1.addItem(world.path(u"music/new/Eta.mp3"));
}

void save(World &world) { world.app.saveOrOpenFile().savePlayList(); }

// The HTTP library is loaded for the first lyric that is looked for: that is not the operation's.
void loadedAll(World &world) {
    world.start();
    world.app.player().open_File(world.path(u"music/new/Theta.mp3"));
    world.app.player().play_Sub();
}

void openNew(World &world) { world.app.Main().take_Chosen_File(world.path(u"music/new/Eta.mp3")); }

void addFile(World &world) {
    world.dialogs.expectOpen(world.path(u"music/new/Eta.mp3"));
    listOf(world).addFile_Click();
}

void addFolder(World &world) {
    world.dialogs.expectFolder(world.path(u"music/new"));
    listOf(world).addDir_Click();
}

void drop(World &world) {
    listOf(world).filesDropped({world.path(u"music/new/Eta.mp3"), world.path(u"music/more")}, 0);
}

void chooseTwo(World &world) { choose(world, {u"music/Beta.mp3", u"music/Delta.mp3"}); }

void remove(World &world) { listOf(world).delIndx_Click(); }

void removeAll(World &world) { listOf(world).delAll_Click(); }

void reload(World &world) {
    listOf(world).afresh_Load_Click();
    addFile(world);
}

// Another list lies in the folder that was chosen.
void chooseAnotherFolder(World &world) {
    world.start();
    world.app.Main().playSet_Button_Click();
    world.app.playSetForm().save_PlayList_Path.setText(world.path(u"lists"));
    world.app.playSetForm().qd_Click();
}

// --- the tracks --------------------------------------------------------------------------------

void chooseThree(World &world) {
    choose(world, {u"music/Beta.mp3", u"music/Gamma.mp3", u"music/Delta.mp3"});
}

void deleteChosen(World &world) { listOf(world).delOne(1, false); }

void chooseOne(World &world) { choose(world, {u"music/Beta.mp3"}); }

void askForName(World &world) {
    chooseOne(world);
    listOf(world).Alter_Click();
    world.app.listControl_Form().jieGuo.setText(u"晚霞");
}

void rename(World &world) { world.app.listControl_Form().OK_Click(); }

void chooseToCopy(World &world) {
    choose(world, {u"music/Alpha.mp3", u"music/Beta.mp3"});
    world.dialogs.expectFolder(world.path(u"stick"));
}

void copy(World &world) { listOf(world).to_Folder(); }

} // namespace

std::vector<Operation> listOperations() {
    return {
        {"save the list", addOneInMemory, save},
        {"open a new file", loadedAll, openNew},
        {"add a file", started, addFile},
        {"add a folder", started, addFolder},
        {"drop", started, drop},
        {"remove rows", chooseTwo, remove},
        {"remove all rows", started, removeAll},
        {"reload and add", started, reload},
        {"save over another list", chooseAnotherFolder, addFile},
        {"delete files", chooseThree, deleteChosen},
        {"rename a file", askForName, rename},
        {"copy files", chooseToCopy, copy},
    };
}

} // namespace velmora::proof
