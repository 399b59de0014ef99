#pragma once

// A program with a lyric folder and a track that has been opened.

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "playlist/Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

class LyricsFixture : public ProgramFixture {
protected:
    LyricsFixture() {
        files.addFolder(u"/lrc");
        files.addFolder(u"/m");
        app.setControl().Path_Lrc = u"/lrc";
        app.lrcForm().lrcMissText = u"none";
        app.Main().title.setCaption(u"Velmora 2011");
    }

    velmora::lrcForm &lyric() { return app.lrcForm(); }
    velmora::doLrcForm &editor() { return app.doLrcForm(); }
    velmora::playInfo_Form &info() { return app.playInfo_Form(); }

    void load(std::string bytes, std::u16string_view path = u"/lrc/a.lrc") {
        files.addFile(path, std::move(bytes));
        lyric().startLoad(path);
    }

    static Texts rowsOf(const forms::ListBox &list) {
        Texts rows;
        for (std::int32_t row = 0; row < list.listCount(); ++row)
            rows.push_back(list.list(row));
        return rows;
    }
};

} // namespace velmora
