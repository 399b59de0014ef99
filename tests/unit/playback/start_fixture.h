#pragma once

// A machine on which the start sequence runs, with what it stores set by the test.

#include "tests/unit/program_fixture.h"

#include "playback/startLoad_Form.h"

namespace velmora {

inline constexpr auto playSetKey = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
inline constexpr auto parametersKey = u"SOFTWARE\\Norvane\\zkPlayer\\playParameters";
inline constexpr auto identityKey = u"SOFTWARE\\Norvane\\zkPlayer\\Vesion";
inline constexpr auto markerPath = u"/run/user/1000/velmora/RestartZkPlayer.tmp";

class Start : public ProgramFixture {
protected:
    Start() { prepareMachine(); }
    startLoad_Form &splash() { return app.startLoad_Form(); }
    std::u16string appTitle() { return app.Main().title.caption(); }
    void set(std::u16string_view name, std::u16string_view value) {
        fake.registry.setText(playSetKey, name, value);
    }
    // The list file of the next start, and the file that was played last.
    void savedList(std::initializer_list<std::u16string_view> paths) {
        std::string bytes;
        for (const auto path : paths)
            bytes += toUtf8(path) + "\r\n";
        files.addFile(listPath(), bytes);
    }
    static std::u16string listPath() {
        return u"/home/user/.local/share/velmora/Program Files/Norvane软件/Velmora/List/"
               u"zkPlayList.m3u";
    }
    void lastPlayed(std::u16string_view path) {
        fake.registry.setText(parametersKey, u"lastPlayFileName", path);
    }
};

} // namespace velmora
