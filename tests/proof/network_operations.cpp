// Fetching: a song, a lyric, the successor of the program, the welcome page.

#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/update.h"
#include "network/welcomeForm.h"
#include "playback/player.h"
#include "settings/setControl.h"
#include "tests/proof/world.h"

namespace velmora::proof {

namespace {

// The HTTP library is loaded at the first request: that is not the operation's.
void online(World &world) {
    world.start();
    passOver([&] {
        world.app.platform().internet.XmlHttpGet(world.app.setControl().get_MakerHost() + u"/");
    });
}

void chooseSong(World &world) {
    online(world);
    search_Song_Internet_Form &form = world.app.search_Song_Internet_Form();
    const std::u16string link = world.app.setControl().get_SongSearchHost() + u"/song.mp3";
    form.show();
    form.search_Song_List.addItem(link);
    form.List1.addItem(link);
    form.List2.addItem(u"0@@NAME@@ALBUM@@SINGER@@1234567@@MP3@@98");
    form.search_Song_List.userClicked(0, 0, false);
}

void fetchSong(World &world) { world.app.search_Song_Internet_Form().save_Click(); }

void chooseLyric(World &world) {
    online(world);
    world.app.player().open_File(world.path(u"music/Beta.mp3"));
    search_Lrc_Internet_Form &form = world.app.search_Lrc_Internet_Form();
    form.show();
    form.search_Lrc_List.addItem(world.app.setControl().get_LrcSiteAHost() + u"/lyric.lrc");
    form.search_Lrc_List.userClicked(0, 0, false);
}

void fetchLyric(World &world) { world.app.search_Lrc_Internet_Form().save_Click(); }

void fetchProgram(World &world) { world.app.update().check_Update(true); }

void fetchWelcome(World &world) { world.app.welcomeForm().Start(false); }

} // namespace

std::vector<Operation> networkOperations() {
    return {
        {"fetch a song", chooseSong, fetchSong},
        {"fetch a lyric", chooseLyric, fetchLyric},
        {"update", online, fetchProgram},
        {"welcome page", online, fetchWelcome},
    };
}

} // namespace velmora::proof
