#pragma once

// A program for benchmarks: windows, registry and engine in memory, files on the real disk.

#include "base/numbers.h"
#include "base/text.h"
#include "platform/linux/linux.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language_Set.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "velmora.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

namespace velmora::bench {

class Program {
public:
    Program() {
        char pattern[] = "/tmp/velmora-bench-XXXXXX";
        folder_ = ::mkdtemp(pattern);
        app.setControl().Path_List = fromUtf8(folder_);
        app.setControl().Language_Index = 1;
        app.Language_Set().language_Messages();
    }
    ~Program() {
        ::unlink((folder_ + "/zkPlayList.m3u").c_str());
        ::rmdir(folder_.c_str());
    }

    void fill(int rows) {
        playList_Form &list = app.playList_Form();
        list.playList_Item.clear();
        list.List1.clear();
        for (int row = 0; row < rows; ++row) {
            const std::u16string name = u"A song with a name of usual length " + decimal(row);
            list.playList_Item.addItem(name);
            list.List1.addItem(u"/home/somebody/Music/An artist/An album/" + name + u".mp3");
        }
    }

private:
    platform::Platform bundle() {
        platform::Platform all = fake.bundle();
        return {ansi_ ? *ansi_ : all.ansi,
                all.clock,
                all.dialogs,
                *files_,
                all.folders,
                all.media,
                all.processes,
                all.registry,
                all.shell,
                all.versions,
                all.waitableTimers,
                all.waveOut,
                all.windows};
    }

    std::string folder_;
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::FileSystem> files_ = platform::makeFileSystem(*ansi_);

public:
    fakes::FakePlatform fake;
    Velmora app{bundle()};
};

} // namespace velmora::bench
