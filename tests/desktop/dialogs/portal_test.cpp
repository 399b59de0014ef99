// What goes between the program and a portal, and what becomes of a dialog whose portal is not
// there, says no, is too old, too slow, or goes.

#include "tests/desktop/dialogs/portal_bus.h"
#include "tests/desktop/qt/desk.h"
#include "tests/fakes/fake_dialogs.h"

#include "base/text.h"
#include "platform/backends/bus/desktop_bus.h"

namespace velmora::tests {
namespace {

using namespace std::string_view_literals;

// Does something once the portal's dialog is up. Its timer is one of the program's.
class WhenUp : public TestForm {
public:
    WhenUp(const PortalBus &bus, std::function<void()> act)
        : TestForm("WhenUp"), act_(std::move(act)) {
        timer.setInterval(10);
        timer.onTimer = [this, &bus] {
            ++ticks;
            if (bus.heard("\"call\"") && act_)
                std::exchange(act_, nullptr)();
        };
        timer.setRunning(true);
    }
    forms::Timer timer{*this, "timer"};
    int ticks = 0;

private:
    std::function<void()> act_;
};

constexpr const char *own = "/the/toolkits/own.mp3";

// The toolkit's dialogs: as scripted, or always this answer.
class Toolkit : public fakes::FakeDialogs {
public:
    bool alwaysOpens = false;
    bool GetOpenFileNameA(platform::OPENFILENAME &record) override {
        if (!alwaysOpens)
            return FakeDialogs::GetOpenFileNameA(record);
        record.file = fromUtf8(own);
        return true;
    }
};

class PortalTest : public DeskTest {
protected:
    void SetUp() override {
        DeskTest::SetUp();
        desktop_ = std::make_unique<platform::DesktopBus>(
            platform::homeFolders(), [](int descriptor, std::function<void()> ready) {
                return desk().windows->watch(descriptor, std::move(ready));
            });
        platform::DialogHost host;
        host.wait = [this](const auto &done, auto limit) {
            if (limit) {
                limit = patience.front();
                if (patience.size() > 1)
                    patience.pop_front();
            }
            return desk().windows->waitModal(done, limit);
        };
        host.soonestEnd = soonestEnd();
        host.nativeWindow = [](platform::HWND window) {
            return desk().windows->nativeWindow(window);
        };
        host.coversOthers = [] { return desk().windows->coversOthers(); };
        host.mayReplace = [this](std::u16string_view path, std::u16string_view) {
            replaced.emplace_back(path);
            return mayReplace;
        };
        dialogs = &desktop_->dialogs(toolkit, std::move(host));
    }
    void TearDown() override {
        desktop_.reset();
        DeskTest::TearDown();
    }

    // No test is so slow that the end of a dialog counts as a person's.
    virtual std::chrono::milliseconds soonestEnd() const { return std::chrono::hours(1); }

    // The answer of the dialog to open a file: the path, or nothing.
    std::string open(platform::HWND owner = 0) {
        platform::OPENFILENAME record;
        record.owner = owner;
        record.title = u"Open \u6B4C";
        record.filter = u"Lyrics\0*.lrc;*.txt\0All\0*.*\0"sv;
        record.initialDirectory = folder.text();
        return dialogs->GetOpenFileNameA(record) ? platform::pathBytes(untilNul(record.file)) : "";
    }
    std::string save(std::u16string name, std::u16string_view where = {}) {
        platform::OPENFILENAME record;
        record.file = std::move(name) + std::u16string(1, u'\0');
        record.filter = u"Lyrics\0*.lrc\0"sv;
        record.initialDirectory = where;
        record.defaultExtension = u"lrc";
        record.flags = platform::OFN_OVERWRITEPROMPT;
        return dialogs->GetSaveFileNameA(record) ? platform::pathBytes(untilNul(record.file)) : "";
    }
    std::string browse() {
        const auto path = dialogs->SHBrowseForFolderA({0, u"Folder", 0});
        return path ? platform::pathBytes(*path) : "";
    }
    // The toolkit's own dialog comes up, once, and answers.
    void expectOwn() { toolkit.expectOpen(u"/the/toolkits/own.mp3"); }

    // The portal's person takes this file.
    void script(const std::string &members, const std::string &answer) {
        bus.script(members + "\"answers\": [" + answer + "]");
    }
    std::string taking(const std::string &path) const {
        return "\"uris\": [" + quotedUri(path) + "]";
    }
    std::string song() const {
        folder.write("song.lrc", "words");
        return folder.bytes("song.lrc");
    }

    TempFolder folder;
    PortalBus bus;
    Toolkit toolkit;
    // For each answer of a portal; the last for all that follow.
    std::deque<std::chrono::milliseconds> patience{std::chrono::minutes(1)};
    bool mayReplace = false;
    std::vector<std::u16string> replaced; // what was asked about
    platform::Dialogs *dialogs = nullptr;

    void endsOfTheProgram() { desktop_->beforeEnd(); }

private:
    std::unique_ptr<platform::DesktopBus> desktop_;
};

std::string hex(std::string_view bytes) {
    std::string digits;
    for (const char c : bytes)
        digits.append({"0123456789abcdef"[static_cast<unsigned char>(c) >> 4U],
                       "0123456789abcdef"[static_cast<unsigned char>(c) & 15U]});
    return digits;
}

TEST_F(PortalTest, IsToldTheWindowTheTitleAndTheFiltersForEveryCase) {
    TestForm form;
    form.appear();
    bus.startPortal();
    script("", "{" + taking(song()) + "}");
    EXPECT_EQ(open(form.hWnd()), folder.bytes("song.lrc"));
    std::ostringstream window;
    window << "\"parent\": \"x11:" << std::hex << nativeOf(form) << "\"";
    EXPECT_TRUE(bus.heard(window.str())) << bus.calls();
    EXPECT_TRUE(bus.heard(R"("title": "Open \u6b4c")")) << bus.calls();
    EXPECT_TRUE(bus.heard(R"("filters": [["Lyrics", [[0, "*.lrc"], [0, "*.[lL][rR][cC]"], )"
                          R"([0, "*.txt"], [0, "*.[tT][xX][tT]"]]], ["All", [[0, "*"]]]])"))
        << bus.calls();
    EXPECT_TRUE(bus.heard("\"current_folder\": \"" + hex(folder.path() + '\0') + "\""))
        << bus.calls();
    EXPECT_TRUE(bus.heard("\"modal\": true")) << bus.calls();
}

TEST_F(PortalTest, WithoutAWindowHasNoParent) {
    bus.startPortal();
    script("", "{" + taking(song()) + "}");
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
    EXPECT_TRUE(bus.heard("\"parent\": \"\"")) << bus.calls();
}

TEST_F(PortalTest, ThatIsOlderIsNotToldWhereToBeginOpening) {
    bus.startPortal();
    script("\"version\": 3, ", "{" + taking(song()) + "}");
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
    EXPECT_FALSE(bus.heard("current_folder")) << bus.calls();
}

TEST_F(PortalTest, AnswersWithAnyBytesInAName) {
    const std::string name = "a\xFF\n%20\"b\" #.lrc";
    folder.write(name, "words");
    bus.startPortal();
    script("", "{" + taking(folder.bytes(name)) + "}");
    EXPECT_EQ(open(), folder.bytes(name));
}

// As text its name could not be told.
TEST_F(PortalTest, IsToldTheBytesOfAFileThatIsSavedAnew) {
    const std::string name = "a\xFF.lrc";
    folder.write(name, "words");
    folder.makeFolder("b\xFE");
    bus.startPortal();
    script("", "{" + taking(folder.bytes(name)) + "}, {\"response\": 1}");
    EXPECT_EQ(save(platform::pathFromBytes("a\xFF"), folder.text()), folder.bytes(name));
    EXPECT_TRUE(bus.heard("\"current_file\": \"" + hex(folder.bytes(name) + '\0') + "\""))
        << bus.calls();
    EXPECT_EQ(save(u"new", folder.text("b\xFE")), "");
    EXPECT_TRUE(bus.heard("\"current_folder\": \"" + hex(folder.bytes("b\xFE/") + '\0') + "\""))
        << bus.calls();
    EXPECT_TRUE(bus.heard(R"("current_name": "new.lrc")")) << bus.calls();
}

TEST_F(PortalTest, AnswersWithTheRoot) {
    bus.startPortal();
    script("", R"({"uris": ["file:///"]})");
    EXPECT_EQ(browse(), "/");
    EXPECT_TRUE(bus.heard("\"directory\": true")) << bus.calls();
}

TEST_F(PortalTest, ThatChoosesWhatIsNoFileOfThisMachineOrIsNotThereGivesNothing) {
    bus.startPortal();
    script("", R"({"uris": ["sftp://other/song.lrc"]}, {"uris": []}, {)" +
                   taking(folder.bytes("missing")) + "}");
    EXPECT_EQ(open(), "");
    EXPECT_EQ(open(), "");
    EXPECT_EQ(open(), "");
    EXPECT_EQ(bus.count("OpenFile"), 3);
}

TEST_F(PortalTest, MayAnswerAheadOfTheCallsOwnAnswer) {
    bus.startPortal();
    script("", "{\"early\": true, " + taking(song()) + "}");
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
}

TEST_F(PortalTest, MayChooseItsRequestsPlaceItself) {
    bus.startPortal();
    script("", "{\"own_handle\": true, " + taking(song()) + "}");
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
}

TEST_F(PortalTest, IsNotAskedAgainAboutANameThatItAskedAbout) {
    folder.write("old.lrc", "old");
    bus.startPortal();
    script("", "{" + taking(folder.bytes("old.lrc")) + "}");
    EXPECT_EQ(save(u"x"), folder.bytes("old.lrc"));
    EXPECT_TRUE(replaced.empty());
}

TEST_F(PortalTest, ThatDidNotKnowTheNameIsAskedAgainBehindANo) {
    folder.write("old.lrc", "old");
    bus.startPortal();
    script("", "{" + taking(folder.bytes("old")) + "}, {" + taking(folder.bytes("new")) + "}");
    EXPECT_EQ(save(u"x"), folder.bytes("new.lrc"));
    ASSERT_EQ(replaced.size(), 1U);
    EXPECT_EQ(replaced.front(), folder.text("old.lrc"));
    EXPECT_TRUE(bus.heard("\"current_file\": \"" + hex(folder.bytes("old.lrc") + '\0') + "\""))
        << bus.calls();
}

TEST_F(PortalTest, ThatIsNotThereLeavesTheToolkitsOwn) {
    expectOwn();
    EXPECT_EQ(open(), own);
    toolkit.expectFolder(u"/own");
    EXPECT_EQ(browse(), "/own");
    toolkit.expectSave(u"/own.lrc");
    EXPECT_EQ(save(u"x"), "/own.lrc");
}

TEST_F(PortalTest, WithoutABusLeavesTheToolkitsOwn) {
    bus.endBus();
    expectOwn();
    EXPECT_EQ(open(), own);
}

TEST_F(PortalTest, WithoutAChooserLeavesTheToolkitsOwn) {
    bus.startPortal();
    script("\"chooser\": false, ", "");
    expectOwn();
    EXPECT_EQ(open(), own);
    EXPECT_FALSE(bus.heard("OpenFile"));
}

TEST_F(PortalTest, ThatKnowsNoFoldersLeavesTheToolkitsOwnForThem) {
    bus.startPortal();
    script("\"version\": 2, ", "{" + taking(song()) + "}");
    toolkit.expectFolder(u"/own");
    EXPECT_EQ(browse(), "/own");
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
}

TEST_F(PortalTest, ThatFailsOrEndsWithoutThePersonLeavesTheToolkitsOwn) {
    bus.startPortal();
    script("", "{\"error\": true}, {\"response\": 2}");
    expectOwn();
    EXPECT_EQ(open(), own);
    expectOwn();
    EXPECT_EQ(open(), own);
    EXPECT_EQ(bus.count("OpenFile"), 2);
}

class SeenDialogTest : public PortalTest {
protected:
    std::chrono::milliseconds soonestEnd() const override { return {}; }
};

// A chooser may say of a window that was closed what others say of one that never came.
TEST_F(SeenDialogTest, ThatEndsInSomeOtherWayIsCancelled) {
    bus.startPortal();
    script("", "{\"response\": 2}");
    EXPECT_EQ(open(), "");
    EXPECT_EQ(bus.count("OpenFile"), 1);
}

TEST_F(PortalTest, ThatNeverAnswersIsWaitedForOnceAndAskedAgainWhenItHas) {
    bus.startPortal();
    bus.stopPortal();
    patience = {std::chrono::milliseconds(100)};
    expectOwn();
    EXPECT_EQ(open(), own);
    patience = {std::chrono::minutes(10)}; // it would be waited for
    expectOwn();
    EXPECT_EQ(open(), own);
    script("", "{" + taking(song()) + "}");
    bus.goOn();
    std::string chosen = own;
    toolkit.alwaysOpens = true;
    ASSERT_TRUE(desk().pump([&] {
        chosen = open();
        return chosen != own;
    })) << "it is not asked any more";
    EXPECT_EQ(chosen, folder.bytes("song.lrc"));
}

TEST_F(PortalTest, WhoseDialogComesTooLateIsToldToCloseIt) {
    bus.startPortal();
    script("", "{\"silent\": true}");
    patience = {std::chrono::minutes(1), std::chrono::milliseconds(100)};
    expectOwn();
    EXPECT_EQ(open(), own);
    EXPECT_TRUE(desk().pump([&] { return bus.heard("closed"); })) << bus.calls();
}

TEST_F(PortalTest, ThatEndsWhileItsDialogIsUpLeavesTheToolkitsOwn) {
    bus.startPortal();
    script("", "{\"hold\": true}");
    WhenUp meanwhile(bus, [this] { bus.endPortal(); });
    expectOwn();
    EXPECT_EQ(open(), own);
}

TEST_F(PortalTest, WhoseBusEndsWhileItsDialogIsUpLeavesTheToolkitsOwn) {
    bus.startPortal();
    script("", "{\"hold\": true}");
    WhenUp meanwhile(bus, [this] { bus.endBus(); });
    expectOwn();
    EXPECT_EQ(open(), own);
}

TEST_F(PortalTest, ClosesItsDialogWhenTheProgramEnds) {
    bus.startPortal();
    script("", "{\"hold\": true}");
    WhenUp meanwhile(bus, [this] {
        endsOfTheProgram();
        ASSERT_TRUE(waitUntil([this] { return bus.heard("closed"); }, 30000));
        bus.endPortal();
    });
    expectOwn();
    EXPECT_EQ(open(), own);
}

TEST_F(PortalTest, NoWindowTakesInputWhileItsDialogIsUpAndTimersGoOn) {
    TestForm form;
    int downs = 0;
    form.on().MouseDown = [&](const forms::MouseEvent &) { ++downs; };
    form.move({150, 150, 1500, 1500});
    form.appear();
    bus.startPortal();
    script("", "{\"hold\": true}");
    bool wasModal = false;
    WhenUp meanwhile(bus, [&] {
        wasModal = desk().windows->isModal();
        desk().click(form.screenX(20), form.screenY(20));
        bus.endPortal();
    });
    expectOwn();
    EXPECT_EQ(open(form.hWnd()), own);
    EXPECT_TRUE(wasModal);
    EXPECT_EQ(downs, 0);
    EXPECT_FALSE(desk().windows->isModal());
    desk().click(form.screenX(20), form.screenY(20));
    EXPECT_TRUE(desk().pump([&] { return downs == 1; }));
}

// The window manager would keep the portal's dialog below it.
TEST_F(PortalTest, IsNotAskedUnderAWindowThatLiesAboveAllOthers) {
    TestForm film;
    film.setTopmost(true);
    film.appear();
    bus.startPortal();
    script("", "{" + taking(song()) + "}");
    expectOwn();
    EXPECT_EQ(open(), own);
    film.setTopmost(false);
    EXPECT_EQ(open(), folder.bytes("song.lrc"));
}

TEST_F(PortalTest, HasNothingToDoWithColoursFontsAndCopies) {
    bus.startPortal();
    toolkit.expectColour(0x123456);
    platform::CHOOSECOLOR colour;
    EXPECT_TRUE(dialogs->ChooseColorA(colour));
    EXPECT_EQ(colour.result, Colour{0x123456});
    toolkit.expectFont([](platform::CHOOSEFONT &) { return 1; });
    platform::CHOOSEFONT font;
    EXPECT_EQ(dialogs->ChooseFontA(font), 1);
    toolkit.expectCopy({7});
    platform::SHFILEOPSTRUCT copy;
    EXPECT_EQ(dialogs->SHFileOperationA(copy), 7);
}

} // namespace
} // namespace velmora::tests
