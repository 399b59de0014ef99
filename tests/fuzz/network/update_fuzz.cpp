// What the maker's server tells of a new version. The first byte says what the user and the machine
// make of it, the first line behind it is the maker's address, the rest the information file.
// Whatever it holds, the check ends; the program comes from where it may alone, and lies in the
// program's folder under a name that leads nowhere else.

#include "base/text.h"
#include "network/addresses.h"
#include "network/update.h"
#include "playback/Main.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/fuzz/network/one_page.h"
#include "velmora.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace velmora;
using namespace velmora::fuzz;

enum Choice : unsigned {
    Languages = 7,
    TakesIt = 8,
    StartsIt = 16,
    AskedFor = 32,
    NoNetwork = 64,
    CannotStart = 128,
};

// Answers every box.
class AnsweringWindows : public fakes::FakeWindows {
public:
    AnsweringWindows(fakes::FakeClock &clock, unsigned choice)
        : FakeWindows(clock), choice_(choice) {}
    platform::MsgBoxResult MsgBox(std::u16string_view, platform::MsgBoxButtons buttons,
                                  platform::MsgBoxIcon, std::u16string_view,
                                  std::u16string_view source) override {
        if (buttons == platform::MsgBoxButtons::Ok)
            return platform::MsgBoxResult::Ok;
        const unsigned answer = source.empty() ? StartsIt : TakesIt;
        return (choice_ & answer) != 0 ? platform::MsgBoxResult::Yes : platform::MsgBoxResult::No;
    }

private:
    unsigned choice_;
};

// One information file at the maker's, and a program at every other address.
class Maker : public fakes::FakeInternet {
public:
    Maker(fakes::FakePlatform &fake, std::string information)
        : FakeInternet(fake.ansi, fake.files), files_(fake.files),
          information_(std::move(information)) {}
    std::vector<std::u16string> programs; // the addresses
    std::int32_t URLDownloadToFileA(std::u16string_view url, std::u16string_view path,
                                    const platform::FileLimits &limits) override {
        if (!isAsked_) {
            isAsked_ = true;
            require(limits.bytes == platform::informationFile.bytes);
            files_.addFile(path, information_);
            return 0;
        }
        programs.emplace_back(url);
        require(startsWith(path, u"/opt/velmora/zkPlayer ["));
        require(!contains(path.substr(std::size(u"/opt/velmora/") - 1), u"/"));
        constexpr std::int32_t notFound = static_cast<std::int32_t>(0x800C0005U);
        if (url.size() % 2 != 0)
            return notFound;
        files_.addFile(path, "program");
        return 0;
    }

private:
    fakes::FakeFiles &files_;
    std::string information_;
    bool isAsked_ = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const unsigned choice = data[0];
    const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::size_t line = std::min(bytes.find('\n'), bytes.size());
    const std::u16string address = fromUtf8(bytes.substr(0, line));

    fakes::FakePlatform fake;
    AnsweringWindows windows(fake.clock, choice);
    Maker maker(fake, std::string(bytes.substr(std::min(line + 1, bytes.size()))));
    Velmora app(fakes::with(fake.bundle(), {.internet = &maker, .windows = &windows}));
    fake.files.addFolder(fake.folders.temporary);
    fake.files.addFolder(u"/opt/velmora");
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", address);
    maker.connectedState = (choice & NoNetwork) != 0 ? 0 : 1;
    if ((choice & CannotStart) != 0)
        fake.shell.answer = 0;
    app.setControl().Language_Index = static_cast<std::int32_t>(choice & Languages);
    app.Main().Vesion = u"2.9.9";

    update &work = app.update();
    try {
        work.check_Update((choice & AskedFor) != 0);
    } catch (const fakes::ProcessEnded &ended) {
        // The new program runs: this one goes.
        require(ended.status == 0 && (choice & StartsIt) != 0 && (choice & CannotStart) == 0);
    }
    isAddressForTheDesktop(work.new_DownloadUrl);
    for (const std::u16string &path : fake.files.files())
        require(startsWith(path, u"/opt/velmora/zkPlayer [") || path == work.update_TmpFile);
    // The other way to the same program.
    work.fetch_NewProgram();
    for (const std::u16string &program : maker.programs)
        require(mayFetchProgram(app.setControl().get_MakerHost(), program));
    return 0;
}
