// Writing lyrics: out of the editor, and into the lyric folder when a track starts.

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "playback/player.h"
#include "tests/proof/world.h"

namespace velmora::proof {

namespace {

void play(World &world, std::u16string_view track) {
    world.app.player().open_File(world.path(track));
    world.app.player().play_Sub();
}

void edit(World &world) {
    world.start();
    play(world, u"music/Beta.mp3");
    doLrcForm &editor = world.app.doLrcForm();
    editor.lrcList.setList(0, u"[00:01.0]changed");
    editor.lrc_Ti_Str.setText(u"霞");
}

void saveLyric(World &world) { world.app.doLrcForm().save_Button_Click(); }

void saveNewAs(World &world) {
    world.dialogs.expectSave(world.path(u"stick/new.lrc"));
    world.app.doLrcForm().anotherSave_Button_Click();
}

void saveOldAs(World &world) {
    world.dialogs.expectSave(world.path(u"stick/old.lrc"));
    world.app.doLrcForm().anotherSave_Button_Click();
}

void started(World &world) { world.start(); }

// Its lyric lies beside it.
void playDelta(World &world) { play(world, u"music/Delta.mp3"); }

} // namespace

std::vector<Operation> lyricOperations() {
    return {
        {"save a lyric", edit, saveLyric},
        {"save a lyric as a new file", edit, saveNewAs},
        {"save a lyric over a file", edit, saveOldAs},
        {"copy a lyric", started, playDelta},
    };
}

} // namespace velmora::proof
