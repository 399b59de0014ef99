// The maker's page of news and links, as it is served. Whatever it holds, it is shown or given up
// for lost; the banner goes round, a click on any line opens an address of the web or nothing, and
// a second load comes to an end, too.

#include "base/text.h"
#include "network/addresses.h"
#include "network/welcomeForm.h"
#include "playback/Main.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "tests/fuzz/network/one_page.h"
#include "velmora.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

namespace {

using namespace velmora;
using namespace velmora::fuzz;

class PatientWindows : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    platform::MsgBoxResult MsgBox(std::u16string_view, platform::MsgBoxButtons buttons,
                                  platform::MsgBoxIcon, std::u16string_view,
                                  std::u16string_view) override {
        require(buttons == platform::MsgBoxButtons::Ok);
        return platform::MsgBoxResult::Ok;
    }
};

class Maker : public fakes::FakeInternet {
public:
    Maker(fakes::FakePlatform &fake, std::string page)
        : FakeInternet(fake.ansi, fake.files), files_(fake.files), page_(std::move(page)) {}
    std::int32_t URLDownloadToFileA(std::u16string_view, std::u16string_view path,
                                    const platform::FileLimits &) override {
        files_.addFile(path, page_);
        return 0;
    }

private:
    fakes::FakeFiles &files_;
    std::string page_;
};

void useIt(welcomeForm &page) {
    // Round the banner, and some ticks for one that is too wide.
    for (int i = 0; i < 300 && page.Timer1.running(); ++i)
        page.Timer1.onTimer();
    page.Advertising.on().Click();
    page.provider.on().Click();
    for (forms::PictureBox *frame : {&page.FrameDate_0, &page.FrameDate_1, &page.FrameDate_2}) {
        int clicked = 0;
        for (forms::Control *line : frame->controls())
            if (line->on().Click && ++clicked < 20)
                line->on().Click();
    }
    require(page.ad_Text.size() < 1'000'000);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fakes::FakePlatform fake;
    PatientWindows windows(fake.clock);
    Maker maker(fake, std::string(reinterpret_cast<const char *>(data), size));
    Velmora app(fakes::with(fake.bundle(), {.internet = &maker, .windows = &windows}));
    fake.files.addFolder(fake.folders.temporary);
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", u"http://maker");
    app.Main().Vesion = u"2.9.9";
    welcomeForm &page = app.welcomeForm();
    for (const bool silent : {true, false}) {
        page.Start(silent);
        useIt(page);
    }
    for (const fakes::FakeShell::Execution &execution : fake.shell.executions)
        require(isAddressForTheDesktop(execution.target));
    return 0;
}
