#pragma once

// The lyric search window with rows as a search leaves them, and a lyric folder.

#include "base/numbers.h"
#include "lyrics/lrcForm.h"
#include "playback/MenuForm.h"
#include "playlist/playInfo_Form.h"
#include "tests/unit/network/network_fixture.h"
#include "tests/unit/pointer.h"

namespace velmora {

class LyricWindow : public NetworkFixture {
protected:
    velmora::search_Lrc_Internet_Form &form = lrcWindow();

    LyricWindow() {
        files.addFolder(u"/lrc/own");
        files.addFolder(u"/m");
        app.setControl().Path_Lrc = u"/lrc/own";
        app.Main().title.setCaption(u"Velmora 2011");
        speak(0);
        form.show();
    }

    void look(std::u16string_view name, std::u16string_view singer) {
        form.songName_Text.setText(name);
        form.singer_Str.setText(singer);
    }
    std::u16string label() { return form.show_Label.caption(); }
    void expectSaving(bool enabled) {
        EXPECT_EQ(form.save.enabled(), enabled);
        EXPECT_EQ(form.anotherSave.enabled(), enabled);
    }
    // Two rows, as a search leaves them.
    void haveRows() {
        haveRow(u"http://sitea/asp/lrc.asp?1");
        haveRow(u"http://siteb/lrcdown/2.lrc");
    }
    void haveRow(std::u16string_view link) {
        form.search_Lrc_List.addItem(link);
        form.save.setEnabled(true);
        form.anotherSave.setEnabled(true);
    }
    static void click(zkButton &button) { clickOn(button); }
};

} // namespace velmora
