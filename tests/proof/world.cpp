#include "tests/proof/world.h"

#include "base/text.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "playback/player.h"
#include "playlist/playList_Form.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "tests/fakes/instead.h"
#include "text/path_text.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace velmora::proof {

namespace {

// A text in JSON. Texts are paths, too: a file-name unit goes out as the escape of that unit.
std::string inJson(std::u16string_view text) {
    std::string result = "\"";
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\') {
            result += static_cast<char>(unit);
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
            result += escape;
        }
    }
    return result + '"';
}

std::string inJson(const std::vector<std::u16string> &texts) {
    std::string result = "[";
    for (const std::u16string &text : texts)
        result += (result.size() > 1 ? "," : "") + inJson(text);
    return result + "]";
}

std::vector<std::u16string> rowsOf(const forms::ListBox &list) {
    std::vector<std::u16string> rows;
    for (std::int32_t row = 0; row < list.listCount(); ++row)
        rows.push_back(list.list(row));
    return rows;
}

// The hosts that the settings name: the same question as the real program asks.
std::vector<std::u16string> hostsOf(setControl &settings) {
    return {settings.get_LrcSearchHost(), settings.get_SongSearchHost(), settings.get_MakerHost()};
}

} // namespace

platform::MsgBoxResult AnsweringWindows::MsgBox(std::u16string_view text,
                                                platform::MsgBoxButtons buttons,
                                                platform::MsgBoxIcon icon,
                                                std::u16string_view title,
                                                std::u16string_view /*source*/) {
    boxes.push_back({std::u16string(text), buttons, icon, std::u16string(title)});
    if (buttons == platform::MsgBoxButtons::Ok)
        return platform::MsgBoxResult::Ok;
    return !refused.empty() && startsWith(text, refused) ? platform::MsgBoxResult::No
                                                         : platform::MsgBoxResult::Yes;
}

// The copy itself is the real one, without the window that shows how far it is.
std::int32_t CopyingDialogs::SHFileOperationA(platform::SHFILEOPSTRUCT &operation) {
    platform::CopyTalk talk;
    talk.mayReplace = [this] {
        return windows_.MsgBox(u"?", platform::MsgBoxButtons::YesNo, platform::MsgBoxIcon::Question,
                               u"copy") == platform::MsgBoxResult::Yes;
    };
    talk.copyAll = [](platform::FileCopy &copy) {
        while (copy.copyPiece()) {
        }
        return true;
    };
    talk.tellError = [this](std::u16string_view concerned, const RunTimeError &error) {
        windows_.MsgBox(std::u16string(concerned) + crLf + error.description(),
                        platform::MsgBoxButtons::Ok, platform::MsgBoxIcon::Critical, u"copy");
    };
    return platform::copyIntoFolder(untilNul(operation.from), untilNul(operation.to), talk,
                                    calls_) == platform::CopyOutcome::Failed
               ? 1
               : 0;
}

World::World(std::string root)
    : root_(std::move(root)), homes_(platform::homeFolders()), ansi_(platform::makeAnsiText([this] {
          const auto provider = settings_->GetObject(u"StdRegProv");
          return provider
              ->GetStringValue(platform::HKEY_LOCAL_MACHINE,
                               u"SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", u"ACP")
              .value_or(std::u16string());
      })),
      registry(homes_.registryFile(), *ansi_), calls_(platform::makeFileCalls(homes_)),
      files_(platform::makeFileSystem(*ansi_, calls_)), folders_(platform::makeFolders(homes_)),
      profiles_(platform::makeProfiles(*files_, *ansi_)),
      internet_(platform::makeInternet(
          *ansi_, [this] { return hostsOf(app.setControl()); }, {}, calls_)),
      windows(fake.clock), processes(platform::makeProcesses(homes_,
                                                             [this] {
                                                                 registry.flush();
                                                                 report();
                                                             }),
                                     path(u"program")),
      shell(platform::makeShell()), dialogs(windows, calls_), app(joined()) {
    settings_ = &registry;
    fake.waveOut.addDevice();
    fake.versions.addProgram(path(u"program/velmora"), u"zkPlayer");
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root_ + "/music"))
        fake.media.addMedium(
            files_->GetShortPathNameA(platform::pathFromBytes(entry.path().string())));
}

platform::Platform World::joined() {
    return fakes::with(fake.bundle(), {.ansi = ansi_.get(),
                                       .dialogs = &dialogs,
                                       .files = files_.get(),
                                       .folders = folders_.get(),
                                       .internet = internet_.get(),
                                       .processes = &processes,
                                       .profiles = profiles_.get(),
                                       .registry = &registry,
                                       .shell = &shell,
                                       .windows = &windows});
}

void World::start() { app.start(); }

std::u16string World::path(std::u16string_view below) const {
    return platform::pathFromBytes(root_) + u"/" + std::u16string(below);
}

void World::report() {
    std::string boxes;
    for (const auto &box : windows.boxes)
        boxes +=
            (boxes.empty() ? "" : ",") + ("[" + std::to_string(static_cast<int>(box.icon)) + "," +
                                          inJson(box.title) + "," + inJson(box.text) + "]");
    const setControl &settings = app.setControl();
    const std::string line =
        "{\"boxes\":[" + boxes + "],\"opened\":" + inJson(shell.opened) +
        ",\"rows\":" + inJson(rowsOf(app.playList_Form().List1)) +
        ",\"playing\":" + inJson(app.player().nowPlay_File) +
        ",\"language\":" + std::to_string(settings.Language_Index) + ",\"folders\":" +
        inJson(std::vector{settings.Path_Lrc, settings.Path_List, settings.Path_Cache}) +
        ",\"raised\":" + inJson(raised) + ",\"last\":" + inJson(lastPlayed) +
        ",\"lyricLabel\":" + inJson(app.search_Lrc_Internet_Form().show_Label.caption()) +
        ",\"songTitle\":" + inJson(app.search_Song_Internet_Form().title.caption()) + "}\n";
    // Not by a call that a disk could refuse.
    ::send(STDOUT_FILENO, line.data(), line.size(), MSG_NOSIGNAL);
}

} // namespace velmora::proof
