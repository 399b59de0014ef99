#include "playlist/saveOrOpenFile.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "playback/Main.h"
#include "playlist/playList_Form.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::int32_t showNormal = 1;
// The probe's name, and those it takes where something else has that name.
constexpr std::u16string_view probeNames[] = {u"zkPlay.tmp", u"zkPlay-2.tmp", u"zkPlay-3.tmp",
                                              u"zkPlay-4.tmp"};

std::u16string quoted(std::u16string_view path) {
    return std::u16string(u"\"").append(path).append(u"\"");
}

} // namespace

saveOrOpenFile::saveOrOpenFile(Velmora &app) : app_(app) {}

bool saveOrOpenFile::canWriteFolder(std::u16string_view folder) {
    if (folder.empty())
        return false;
    std::unique_ptr<platform::FileSystemObject> object;
    if (!passOver([&] { object = app_.platform().files.CreateFileSystemObject(); }))
        return false;
    const std::string bytes = app_.platform().ansi.encode(app_.Main().title.caption());
    for (const std::u16string_view name : probeNames) {
        const std::u16string probe = probePath(folder, name);
        const Probe outcome = makeProbe(probe, bytes, *object);
        if (outcome == Probe::Made)
            return passOver([&] { object->DeleteFile(probe); });
        if (outcome == Probe::Failed)
            return false;
    }
    return false;
}

std::u16string saveOrOpenFile::probePath(std::u16string_view folder, std::u16string_view name) {
    return std::u16string(folder).append(1, app_.platform().files.separator()).append(name);
}

// What lies there already is nobody's to overwrite or delete, except what a probe left behind that
// was cut short: that holds what this one is about to write.
saveOrOpenFile::Probe saveOrOpenFile::makeProbe(std::u16string_view path, std::string_view bytes,
                                                platform::FileSystemObject &object) {
    platform::FileSystem &files = app_.platform().files;
    passOver([&] {
        if (fileExists(path) && files.readBytes(path, 0, bytes.size() + 1) == bytes)
            object.DeleteFile(path);
    });
    try {
        files.writeNew(path, bytes, false);
        return Probe::Made;
    } catch (const RunTimeError &error) {
        return error.number() == ErrorNumber::FileExists ? Probe::Taken : Probe::Failed;
    }
}

// A probe is not waited for, so that a power cut can leave its name without its content.
void saveOrOpenFile::clearProbes(std::u16string_view folder) {
    platform::FileSystem &files = app_.platform().files;
    const std::string bytes = app_.platform().ansi.encode(app_.Main().title.caption());
    for (const std::u16string_view name : probeNames)
        passOver([&] {
            const std::u16string probe = probePath(folder, name);
            const std::string found = files.readBytes(probe, 0, bytes.size() + 1);
            if (found == bytes || found.empty())
                files.CreateFileSystemObject()->DeleteFile(probe);
        });
}

bool saveOrOpenFile::deleteFileChecked(std::u16string_view path) {
    try {
        app_.platform().files.CreateFileSystemObject()->DeleteFile(path);
        return true;
    } catch (const RunTimeError &error) {
        lastDeleteError = error.description();
        return false;
    }
}

std::u16string saveOrOpenFile::fileOnDisk(std::u16string_view path) {
    platform::FileSystem &files = app_.platform().files;
    std::u16string found = files.Dir(path);
    if (!found.empty()) {
        const std::size_t separator = path.rfind(files.separatorOf(path));
        if (separator != std::u16string_view::npos)
            found.insert(0, path.substr(0, separator + 1));
    }
    return found;
}

bool saveOrOpenFile::isValidFileName(std::u16string_view name) noexcept {
    constexpr std::size_t longest = 222;
    constexpr std::u16string_view forbidden = u"\\/:*?\"<>|";
    return name.size() <= longest && !trim(name).empty() &&
           name.find_first_of(forbidden) == std::u16string_view::npos;
}

bool saveOrOpenFile::shellOpen(std::u16string_view target) {
    shellStart(target);
    return true;
}

bool saveOrOpenFile::shellStart(std::u16string_view target) {
    constexpr std::int32_t lastFailure = 32;
    return app_.platform().shell.ShellExecuteA(app_.playList_Form().hWnd(), u"open", target,
                                               showNormal) > lastFailure;
}

void saveOrOpenFile::mailTo(std::u16string_view address) {
    app_.platform().shell.ShellExecuteA(0, u"", std::u16string(u"mailto:").append(address),
                                        showNormal);
}

bool saveOrOpenFile::shellDel(std::u16string_view path) {
    app_.platform().shell.Shell_(u"cmd /c del " + quoted(path));
    return true;
}

bool saveOrOpenFile::shellMd(std::u16string_view path) {
    app_.platform().shell.Shell_(u"cmd /c md " + quoted(path));
    return true;
}

} // namespace velmora
