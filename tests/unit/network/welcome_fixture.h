#pragma once

// The maker's page in a program on the platform in memory.

#include "network/welcomeForm.h"
#include "tests/unit/pointer.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class WelcomeFixture : public ProgramFixture {
protected:
    WelcomeFixture() {
        speak(1);
        files.addFolder(fake.folders.temporary);
        fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\hosts", u"maker", u"http://maker");
        app.Main().Vesion = u"1.0.0";
        app.Main().welcome.setVisible(false);
    }
    welcomeForm &page() { return app.welcomeForm(); }
    std::u16string file() { return fake.folders.temporary + u"zkPlayerWelcome.tmp"; }
    void serve(std::string text) {
        fake.internet.setDownload(u"http://maker/source/mini/zkPlayerWelcome.php", std::move(text));
    }
    // A whole page, with sections of the test's own behind it.
    static std::string whole(const std::string &more = {}, const std::string &check = {}) {
        return (check.empty() ? "[check]\nvesion=1.0.0\nupdate=0\n" : check) +
               "[config]\ntitle=News\nprovider=Norvane\nproviderLink=http://p/\nbuttonStr0=A\n"
               "buttonStr1=B\nbuttonStr2=C\n" +
               more;
    }
    void start(const std::string &text) {
        serve(text);
        page().Start(false);
    }
    void expectBox(std::u16string_view text, MsgBoxIcon icon = MsgBoxIcon::Critical) {
        windows.expectMsgBox(boxOf(text, icon, app.Language().msg_Error), MsgBoxResult::Ok);
    }
    void expectClosed() {
        EXPECT_FALSE(page().visible());
        EXPECT_FALSE(page().Timer1.running());
        EXPECT_TRUE(app.Main().welcome.visible());
        EXPECT_FALSE(files.hasFile(file()));
    }
    // Every label in a panel.
    static std::vector<forms::Label *> lines(forms::PictureBox &frame) {
        std::vector<forms::Label *> found;
        for (forms::Control *control : frame.controls())
            found.push_back(static_cast<forms::Label *>(control));
        return found;
    }
    void tick(int times = 1) {
        for (int i = 0; i < times; ++i)
            page().Timer1.onTimer();
    }
    std::u16string opened() {
        return fake.shell.executions.empty() ? u"" : fake.shell.executions.back().target;
    }
};

} // namespace velmora
