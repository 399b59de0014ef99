#pragma once

// A program that knows its hosts, on a network in memory.

#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/song_Internet_Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

class NetworkFixture : public ProgramFixture {
protected:
    fakes::FakeInternet &net = fake.internet;
    lrc_Internet_Search &search = app.lrc_Internet_Search();
    song_Internet_Search &songs = app.song_Internet_Search();

    static constexpr auto hostsKey = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";
    static constexpr auto engineAddress =
        u"http://engine/m?f=ms&rn=10&tn=baidump3lyric&ct=150994944&word=";
    static constexpr auto songAddress = u"http://songs/fcgi-bin/m.q?w=";

    NetworkFixture() {
        setHost(u"lrcSearch", u"http://engine");
        setHost(u"lrcSiteA", u"http://sitea");
        setHost(u"lrcSiteB", u"http://siteb");
        setHost(u"songSearch", u"http://songs");
        app.playerInfo().buildGenreTable();
    }

    void setHost(std::u16string_view name, std::u16string_view host) {
        fake.registry.setText(hostsKey, name, host);
    }

    velmora::search_Lrc_Internet_Form &lrcWindow() { return app.search_Lrc_Internet_Form(); }
    velmora::search_Song_Internet_Form &songWindow() { return app.search_Song_Internet_Form(); }

    static std::u16string lyricAddress(std::u16string_view word) {
        return std::u16string(engineAddress).append(word).append(u" &lm=-1");
    }
    static std::u16string songPageAddress(std::u16string_view word) {
        return std::u16string(songAddress).append(word).append(u"&source=1&t=0");
    }

    static Texts rowsOf(const forms::ListBox &list) {
        Texts rows;
        for (std::int32_t row = 0; row < list.listCount(); ++row)
            rows.push_back(list.list(row));
        return rows;
    }
    static Texts textsOf(const LinkArray &links) {
        Texts texts;
        for (std::int32_t index = 0; index <= links.upperBound(); ++index)
            texts.push_back(links.at(index));
        return texts;
    }
    // A link as pages write it.
    static std::string link(const std::string &address) {
        return "<a href=\"" + address + "\">x</a>";
    }

    // A track that is open, with an ID3v1 tag unless both texts are absent.
    void openTrack(std::u16string_view path, const char *title_ = nullptr,
                   const char *artist = nullptr) {
        addTrack(path);
        if (title_ != nullptr) {
            const auto field = [](std::string text, std::size_t size) {
                text.resize(size, '\0');
                return text;
            };
            files.addFile(path, "TAG" + field(title_, 30) + field(artist, 30) + field("", 30) +
                                    field("", 4) + field("", 30) + '\x01');
        }
        app.player().open_File(std::u16string(path));
    }

    static void doubleClick(forms::ListBox &list, std::int32_t row) {
        list.userClicked(row, 0, false);
        list.userDoubleClicked(row);
    }
    static void moveOver(forms::ListBox &list, Twips y, std::int16_t buttons = 0) {
        list.on().MouseMove({buttons, 0, 10, y});
    }
    int countLog(std::u16string_view beginning) const {
        int result = 0;
        for (const std::u16string &line : net.log)
            result += startsWith(line, beginning);
        return result;
    }
};

} // namespace velmora
