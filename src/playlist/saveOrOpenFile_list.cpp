// The play list file.

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/windows.h"
#include "playback/player.h"
#include "playlist/list_work.h"
#include "playlist/playList_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "velmora.h"

#include <utility>

namespace velmora {

namespace {

// A line as it was read. Blanks and quotes are single bytes in every code page, so the line is
// taken apart ahead of decoding: what decides how a path is decoded is the path.
std::string_view withoutQuotes(std::string_view line) {
    if (!line.empty() && line.front() == '"')
        line.remove_prefix(1);
    if (!line.empty() && line.back() == '"')
        line.remove_suffix(1);
    return line;
}

std::string_view trimmed(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

} // namespace

// Spelt in one way, however the folder is: what is known of the file is known by its path.
std::u16string saveOrOpenFile::playListPath() const {
    const std::u16string &folder = app_.setControl().Path_List;
    // Without a folder there is no file; the root of the system is not meant.
    if (folder.empty())
        return {};
    const char16_t separator = app_.platform().files.separator();
    std::u16string path;
    for (const char16_t unit : folder + separator)
        if (unit != separator || path.empty() || path.back() != separator)
            path += unit;
    return path + u"zkPlayList.m3u";
}

// --- saving --------------------------------------------------------------------------------------

bool saveOrOpenFile::savePlayList(SaveKind kind) {
    // Half a list must not go over the whole one that is being read.
    if (isLoading_) {
        isSaveWanted_ = true;
        return true;
    }
    const bool last = kind == SaveKind::Settled;
    passOver([&] { writeList(last); });
    if (last)
        std::string().swap(saved_);
    else
        saved_.clear();
    return true;
}

void saveOrOpenFile::writeList(bool durable) {
    platform::FileSystem &files = app_.platform().files;
    std::u16string path = playListPath();
    if (path.empty())
        return;
    if (const std::u16string found = fileOnDisk(path); !found.empty())
        path = found;
    // The search answers a disk that fails and a file that is not there alike; the length does not.
    KnownFile there{path, 0};
    bool isThere = true;
    try {
        there.length = files.FileLen(path);
    } catch (const RunTimeError &error) {
        if (error.number() != ErrorNumber::FileNotFound)
            throw;
        isThere = false;
    }
    if (isThere && there != known_) {
        keepOld(path);
        known_ = there;
    }
    encodeList();
    files.writeWhole(path, saved_, durable);
    known_ = {path, static_cast<std::int64_t>(saved_.size())};
}

void saveOrOpenFile::encodeList() {
    const forms::ListBox &list = app_.playList_Form().List1;
    const platform::AnsiText &ansi = app_.platform().ansi;
    const std::int32_t rows = list.listCount();
    std::size_t atLeast = 0;
    for (std::int32_t row = 0; row < rows; ++row)
        atLeast += list.list(row).size() + 2;
    saved_.clear();
    saved_.reserve(atLeast);
    for (std::int32_t row = 0; row < rows; ++row) {
        ansi.appendTo(saved_, list.list(row));
        saved_ += "\r\n";
    }
}

void saveOrOpenFile::keepOld(const std::u16string &path) {
    constexpr std::u16string_view numbers = u"123456789";
    platform::FileSystem &files = app_.platform().files;
    const KnownFile file{path, files.FileLen(path)};
    std::u16string place = path + u".old";
    if (keepsAs(file, place))
        return;
    place += u".0";
    for (const char16_t number : numbers) {
        place.back() = number;
        if (keepsAs(file, place))
            return;
    }
    files.CreateFileSystemObject()->DeleteFile(place);
    files.keepAs(path, place);
}

// False where something else has that place.
bool saveOrOpenFile::keepsAs(const KnownFile &file, const std::u16string &place) {
    try {
        app_.platform().files.keepAs(file.path, place);
        return true;
    } catch (const RunTimeError &error) {
        if (error.number() != ErrorNumber::FileExists)
            throw;
        return isCopy(file, place);
    }
}

// A save that fails behind the keeping must not fill the folder with copies of one file.
bool saveOrOpenFile::isCopy(const KnownFile &file, const std::u16string &other) {
    constexpr std::int64_t step = std::int64_t{1} << 20;
    platform::FileSystem &files = app_.platform().files;
    bool isSame = false;
    passOver([&] {
        if (files.FileLen(other) != file.length)
            return;
        for (std::int64_t at = 0; at < file.length; at += step)
            if (files.readBytes(file.path, at, step) != files.readBytes(other, at, step))
                return;
        isSame = true;
    });
    return isSame;
}

// --- loading -------------------------------------------------------------------------------------

bool saveOrOpenFile::loadPlayList() {
    platform::WindowSystem &windows = app_.platform().windows;
    const ListWork still(app_);
    passOver([&] { windows.DoEvents(); });
    const std::u16string path = fileOnDisk(playListPath());
    if (path.empty())
        return false;

    velmora::playList_Form &form = app_.playList_Form();
    form.playList_Item.clear();
    form.List1.clear();
    passOver([&] { form.controlEnabled(false); });
    form.waitAdd.setVisible(true);
    // Asked for ahead of the lines: what comes to the file meanwhile is not taken for read.
    KnownFile file{path, 0};
    const bool isKnown = passOver([&] { file.length = app_.platform().files.FileLen(path); });
    isLoading_ = true;
    known_ = readLines(path) && isKnown ? std::move(file) : KnownFile();
    isLoading_ = false;
    form.waitAdd.setVisible(false);
    passOver([&] { form.controlEnabled(true); });
    if (std::exchange(isSaveWanted_, false))
        savePlayList();
    return true;
}

// Whether every line was taken.
bool saveOrOpenFile::readLines(const std::u16string &path) {
    platform::WindowSystem &windows = app_.platform().windows;
    try {
        const auto reader = app_.platform().files.openInput(path);
        while (!reader->endOfFile()) {
            passOver([&] { windows.DoEvents(); });
            const std::string line = reader->readLine();
            if (!trimmed(line).empty() && !takeLine(withoutQuotes(line)))
                return false;
        }
        return true;
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        return false;
    }
}

// False when the list is full.
bool saveOrOpenFile::takeLine(std::string_view line) {
    velmora::playList_Form &form = app_.playList_Form();
    const std::string_view bytes = trimmed(line);
    const std::u16string path = app_.platform().ansi.decodePath(bytes);
    showLoading(line, bytes, path);
    if (form.List1.contains(path))
        return true;
    return passOver([&] { form.playList_Item.addItem(app_.player().getFileStem(path)); }) &&
           passOver([&] { form.List1.addItem(path); });
}

// Shows the line with the blanks that its path has lost.
void saveOrOpenFile::showLoading(std::string_view line, std::string_view pathBytes,
                                 const std::u16string &path) {
    velmora::playList_Form &form = app_.playList_Form();
    if (pathBytes.size() == line.size()) {
        form.waitAdd_Show.setCaption(path);
    } else {
        const auto before =
            pathBytes.empty() ? 0 : static_cast<std::size_t>(pathBytes.data() - line.data());
        const std::size_t behind = line.size() - pathBytes.size() - before;
        form.waitAdd_Show.setCaption(std::u16string(before, u' ') + path +
                                     std::u16string(behind, u' '));
    }
    form.waitAdd_Title.setCaption(app_.Language().msg_Loading_Tracks);
    form.waitAdd.refresh();
}

} // namespace velmora
