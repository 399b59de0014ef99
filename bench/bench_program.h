#pragma once

// A program for benchmarks: windows, registry and engine in memory, files on the real disk.

#include "base/numbers.h"
#include "base/text.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "playback/Main.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language_Set.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <unistd.h>

namespace velmora::bench {

class Program {
public:
    // The registry in memory, or the one that users have, in a folder of its own.
    enum class Settings { InMemory, OnDisk };

    explicit Program(Settings settings = Settings::InMemory)
        : folder_(newFolder()),
          registry_(settings == Settings::OnDisk ? std::make_unique<platform::SqliteRegistry>(
                                                       folder_ + "/registry.sqlite", *ansi_)
                                                 : nullptr) {
        app.setControl().Path_List = fromUtf8(folder_);
        app.setControl().Language_Index = 1;
        app.Language_Set().language_Messages();
    }
    ~Program() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
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
    static std::string newFolder() {
        char pattern[] = "/tmp/velmora-bench-XXXXXX";
        return ::mkdtemp(pattern);
    }

    platform::Platform bundle() {
        return fakes::with(
            fake.bundle(),
            {.ansi = ansi_.get(), .files = files_.get(), .registry = registry_.get()});
    }

    std::string folder_;
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::FileSystem> files_ = platform::makeFileSystem(*ansi_);
    std::unique_ptr<platform::Registry> registry_;

public:
    fakes::FakePlatform fake;
    Velmora app{bundle()};
};

} // namespace velmora::bench
