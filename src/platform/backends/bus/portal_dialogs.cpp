#include "platform/backends/bus/portal_dialogs.h"

#include "base/text.h"
#include "text/path_text.h"

#include <sys/stat.h>

#include <charconv>

namespace velmora::platform::bus {

namespace {

using How = FileChooser::Answer::How;

std::string nameOf(std::uint32_t window) {
    if (window == 0)
        return {};
    char digits[8];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), window, 16).ptr;
    return "x11:" + std::string(std::begin(digits), end);
}

std::string words(std::u16string_view title) { return toUtf8(untilNul(title)); }

} // namespace

std::optional<std::u16string> PortalDialogs::SHBrowseForFolderA(const BROWSEINFO &record) {
    const FileChooser::Answer answer =
        ask({FileChooser::Kind::Folder, {}, words(record.title), {}, {}, {}}, record.owner);
    switch (answer.how) {
    case How::NotAsked:
        return own_.SHBrowseForFolderA(record);
    case How::Chosen:
        return pathFromBytes(answer.path);
    case How::Cancelled:
        break;
    }
    return std::nullopt;
}

bool PortalDialogs::GetOpenFileNameA(OPENFILENAME &record) {
    const FileChooser::Answer answer = ask({FileChooser::Kind::Open,
                                            {},
                                            words(record.title),
                                            dialogFilters(record.filter),
                                            pathBytes(record.initialDirectory),
                                            {}},
                                           record.owner);
    if (answer.how == How::NotAsked)
        return own_.GetOpenFileNameA(record);
    const std::u16string path = pathFromBytes(answer.path);
    // The flags ask for a file that exists; what other choosers let through is none.
    if (answer.how != How::Chosen || !isThere(path))
        return false;
    record.file = path + std::u16string(1, u'\0');
    return true;
}

// The portal's chooser asks whether to overwrite, but about the name that it answers: the proposed
// one has its extension from the start, and about a name that gets it afterwards is asked here.
bool PortalDialogs::GetSaveFileNameA(OPENFILENAME &record) {
    const std::vector<DialogFilter> filters = dialogFilters(record.filter);
    std::u16string folder = record.initialDirectory;
    if (!folder.empty() && folder.back() != u'/')
        folder += u'/';
    std::u16string name(untilNul(record.file));
    for (;;) {
        name = completedName(filters, name, record.defaultExtension);
        const bool exists = !folder.empty() && isThere(folder + name);
        const FileChooser::Answer answer = ask({FileChooser::Kind::Save,
                                                {},
                                                words(record.title),
                                                filters,
                                                pathBytes(folder),
                                                pathBytes(name),
                                                exists},
                                               record.owner);
        if (answer.how == How::NotAsked)
            return own_.GetSaveFileNameA(record);
        if (answer.how == How::Cancelled)
            return false;
        const std::u16string path = pathFromBytes(answer.path);
        folder = folderPart(path);
        name = completedName(filters, baseName(path), record.defaultExtension);
        const std::u16string target = folder + name;
        if (target == path || (record.flags & OFN_OVERWRITEPROMPT) == 0 || !isThere(target) ||
            host_.mayReplace(target, record.title)) {
            record.file = target + std::u16string(1, u'\0');
            return true;
        }
    }
}

FileChooser::Answer PortalDialogs::ask(FileChooser::Question question, HWND owner) {
    if (host_.coversOthers())
        return {};
    question.parent = nameOf(host_.nativeWindow(owner));
    return chooser_.ask(question);
}

// A disk that does not tell may have it.
bool PortalDialogs::isThere(const std::u16string &path) {
    return disk_
        .ask(
            pathBytes(path),
            [name = pathBytes(path)] {
                struct ::stat about {};
                return ::lstat(name.c_str(), &about) == 0;
            })
        .value_or(true);
}

} // namespace velmora::platform::bus
