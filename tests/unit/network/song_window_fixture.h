#pragma once

// The song search window with rows as a search leaves them, and a cache folder.

#include "tests/unit/network/network_fixture.h"
#include "tests/unit/pointer.h"

namespace velmora {

class SongWindowFixture : public NetworkFixture {
protected:
    velmora::search_Song_Internet_Form &form = songWindow();
    const std::u16string cached = u"/data/cache/SINGER NAME.MP3";

    SongWindowFixture() {
        files.addFolder(u"/data/cache");
        files.addFolder(u"/m");
        app.setControl().Path_Cache = u"/data/cache";
        app.setControl().Path_List = u"/data/cache";
        app.Main().title.setCaption(u"Velmora 2011");
        speak(0);
        form.show();
    }

    static constexpr auto record = u"0@@NAME@@ALBUM@@SINGER@@1234567@@MP3@@98";
    static constexpr auto address = u"HTTP://SONGS/A/B.MP3";

    void addSong(std::u16string_view packed = record, std::u16string_view link = address) {
        form.search_Song_List.addItem(std::u16string(link));
        form.List1.addItem(link);
        form.List2.addItem(packed);
        form.save.setEnabled(true); // as a search leaves them
        form.anotherSave.setEnabled(true);
    }
    void choose(std::int32_t row) { form.search_Song_List.userClicked(row, 0, false); }
    void fetchByDoubleClick(std::int32_t row = 0) { doubleClick(form.search_Song_List, row); }
    void look(std::u16string_view name, std::u16string_view singer) {
        form.songName_Text.setText(name);
        form.singer_Str.setText(singer);
    }
    void answerWith(std::string body, const std::string &type = "audio/mpeg") {
        net.respond(fakes::FakeInternet::answer(std::move(body), type));
    }
    std::u16string heading() { return form.title.caption(); }
    std::u16string label() { return form.show_Label.caption(); }
    static void click(zkButton &button) { clickOn(button); }
    void expectSaving(bool enabled) {
        EXPECT_EQ(form.save.enabled(), enabled);
        EXPECT_EQ(form.anotherSave.enabled(), enabled);
    }
    void expectIdle() {
        EXPECT_TRUE(form.search_Song_List.enabled());
        EXPECT_TRUE(form.search_Button.enabled());
        expectSaving(true);
        EXPECT_FALSE(form.DownFileBox.visible());
    }
    Texts downInfo() {
        return {form.downInfo_0.caption(), form.downInfo_1.caption(), form.downInfo_2.caption(),
                form.downInfo_3.caption(), form.downInfo_4.caption()};
    }
    // The medium that a fetched file is for the engine.
    void playable(std::u16string_view path, std::int32_t lengthMs = 60'000) {
        media.addMedium(files.GetShortPathNameA(path), lengthMs, false);
    }
};

} // namespace velmora
