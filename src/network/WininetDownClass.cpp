#include "network/WininetDownClass.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/files.h"
#include "platform/contracts/profiles.h"

#include <optional>

namespace velmora {

namespace {

// Where the part behind the drive begins. A path at "/" has an empty drive in front of it, and a
// ":" inside its names is none.
std::optional<std::size_t> driveEnd(std::u16string_view path, char16_t separator) {
    if (separator == u'/')
        return startsWith(path, u"/") ? std::optional<std::size_t>(0) : std::nullopt;
    const std::size_t colon = path.find(u':');
    return colon == std::u16string_view::npos ? std::nullopt : std::optional(colon + 1);
}

// The folders of the path, behind the drive and its separator. One at the end stays.
std::u16string foldersOf(std::u16string_view path, std::size_t drive, char16_t separator) {
    std::size_t end = path.size();
    if (contains(path, u"."))
        if (const std::size_t last = path.rfind(separator); last != std::u16string_view::npos)
            end = last + 1;
    std::u16string_view folders = end > drive ? path.substr(drive, end - drive) : u"";
    if (!folders.empty() && folders.front() == separator)
        folders.remove_prefix(1);
    return std::u16string(folders);
}

// By the exact name: a folder of another case is another one.
bool folderExists(platform::FileSystem &files, std::u16string_view folder, char16_t separator) {
    while (folder.size() > 1 && folder.back() == separator)
        folder.remove_suffix(1);
    const std::u16string found = files.Dir(folder, platform::SearchFor::Folders);
    return !found.empty() && found == folder.substr(folder.rfind(separator) + 1);
}

} // namespace

std::u16string formatByteSize(platform::Profiles &profiles, double size) {
    std::u16string text;
    passOver([&] {
        text = profiles.StrFormatByteSizeA(roundToInt32(size));
        text.resize(untilNul(text).size());
    });
    return text;
}

bool makeDirectoryChain(platform::FileSystem &files, std::u16string &path) {
    const char16_t separator = files.separatorOf(path);
    if (separator == u'\\')
        path = replaceAll(path, u"/", u"\\");
    path = replaceAll(path, std::u16string(2, separator), std::u16string(1, separator));
    std::erase(path, u'\0');

    const std::optional<std::size_t> drive = driveEnd(path, separator);
    if (!drive)
        return false;
    const std::u16string root = path.substr(0, *drive) + separator;
    const std::u16string folders = foldersOf(path, *drive, separator);
    if (folderExists(files, root + folders, separator))
        return true;
    std::u16string running = root;
    for (const std::u16string &piece : split(folders, separator)) {
        if (running.size() != root.size())
            running += separator;
        running += piece;
        if (!folderExists(files, running, separator))
            passOver([&] { files.MkDir(running); });
    }
    return true;
}

} // namespace velmora
