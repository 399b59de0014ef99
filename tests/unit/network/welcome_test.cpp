// The maker's page of news and links.

#include "tests/unit/program_fixture.h"

#include "network/welcomeForm.h"

namespace velmora {
namespace {

using platform::MsgBoxIcon;
using platform::MsgBoxResult;

class Welcome : public ProgramFixture {
protected:
    Welcome() {
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

// --- what ends the load ---

TEST_F(Welcome, WithoutANetworkSaysSoAndCloses) {
    fake.internet.connectedState = 0;
    expectBox(app.Language().msg_No_Network);
    page().Start(false);
    expectClosed();
    EXPECT_EQ(page().loadStr.caption(), u"正在下载资源...");
}

TEST_F(Welcome, SilentSaysNothingOfTheNetwork) {
    fake.internet.connectedState = 0;
    page().Start(true);
    fake.internet.connectedState = 1;
    page().Start(true); // and nothing is served
    expectClosed();
    EXPECT_TRUE(windows.boxes.empty());
}

TEST_F(Welcome, ThatCannotBeFetchedSaysSoAndCloses) {
    expectBox(u"远程数据传输错误！");
    page().Start(false);
    expectClosed();
}

TEST_F(Welcome, IsNotFetchedWhereTheTemporaryFolderCannotBeWritten) {
    files.setReadOnly(fake.folders.temporary);
    expectBox(u"远程数据传输错误！");
    page().Start(false);
    for (const std::u16string &line : fake.internet.log)
        EXPECT_FALSE(startsWith(line, u"URLDownloadToFileA"));
}

TEST_F(Welcome, WithoutVersionOrUpdateIsADataErrorEvenWhenSilent) {
    for (const char *check : {"[check]\nupdate=0\n", "[check]\nvesion=1.0.0\n"}) {
        expectBox(u"远程数据错误！");
        serve(whole({}, check));
        page().Start(true);
        expectClosed();
    }
}

class WelcomeLacks : public Welcome, public ::testing::WithParamInterface<const char *> {};

TEST_P(WelcomeLacks, IsADataError) {
    std::string text = whole();
    const std::string key = GetParam();
    const std::size_t at = text.find("\n" + key + "=") + 1;
    text.erase(at, text.find('\n', at) - at);
    expectBox(u"远程数据错误！");
    start(text);
    expectClosed();
}

INSTANTIATE_TEST_SUITE_P(Keys, WelcomeLacks,
                         ::testing::Values("title", "provider", "providerLink", "buttonStr0",
                                           "buttonStr1", "buttonStr2"));

TEST_F(Welcome, WithAColourThatIsNoNumberIsADataError) {
    expectBox(u"远程数据错误！");
    start(whole("databaseFrame_BackColor=green\n"));
    expectClosed();
}

// --- versions ---

TEST_F(Welcome, OfTheOwnVersionPassesWithoutAMessage) {
    start(whole());
    EXPECT_TRUE(page().visible());
    EXPECT_TRUE(windows.boxes.empty());
}

TEST_F(Welcome, ThatAnOlderProgramCannotUseSaysSoAndCloses) {
    expectBox(u"您当前的程序与资讯要求匹配版本低，在此版本上以无法提供正确数据加载，"
              u"请您更新您的程序后在此启用！");
    start(whole({}, "[check]\nvesion=1.0.1\nupdate=1\n"));
    expectClosed();
}

TEST_F(Welcome, ThatAnOlderProgramCanUseSaysSoAndGoesOn) {
    windows.expectMsgBox(boxOf(u"您当前的程序与资讯要求匹配版本低，但是依然可以获取正确数据加载，"
                               u"我们建议您更新的程序以便更好的体验！",
                               MsgBoxIcon::Information, u"友情提示"),
                         MsgBoxResult::Ok);
    start(whole({}, "[check]\nvesion=2.0.0\nupdate=2\n"));
    EXPECT_TRUE(page().visible());
}

// --- what is shown ---

TEST_F(Welcome, ShowsTitleProviderTabsAndTheFirstPage) {
    page().FrameDate_1.setVisible(true);
    start(whole());
    EXPECT_EQ(page().title.caption(), u"News");
    EXPECT_EQ(page().provider.caption(), u"Norvane");
    EXPECT_EQ(page().provider.tag(), u"http://p/");
    EXPECT_EQ(page().tabButton_0.caption(), u"A");
    EXPECT_EQ(page().tabButton_2.caption(), u"C");
    EXPECT_TRUE(page().tabButton_0.enabled());
    EXPECT_TRUE(page().FrameDate_0.visible());
    EXPECT_FALSE(page().FrameDate_1.visible());
    EXPECT_FALSE(page().loadStr.visible());
    EXPECT_TRUE(page().Timer1.running());
    EXPECT_EQ(page().FrameDate_0.backColor(), 32768U);
    EXPECT_TRUE(page().topmost());
}

TEST_F(Welcome, TakesItsColoursFontAndGapFromTheFile) {
    start(whole("databaseFrame_BackColor=255\ndatabaseStr_Color=65280\ndatabaseStr_Font=Mono\n"
                "databaseStr_FontSize=12\ndatabaseStr_Interval=30\n"
                "[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str= one \n"
                "databases_0_0_Link=http://one\ndatabases_0_1_Str=two\n"));
    EXPECT_EQ(page().FrameDate_2.backColor(), 255U);
    const auto shown = lines(page().FrameDate_0);
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0]->caption(), u"one");
    EXPECT_EQ(shown[0]->toolTip(), u"one");
    EXPECT_EQ(shown[0]->tag(), u"http://one");
    EXPECT_EQ(shown[0]->top(), 30);
    EXPECT_EQ(shown[1]->caption(), u"two");
    EXPECT_EQ(shown[1]->top(), 2 * 30 + shown[0]->height());
    for (const forms::Label *line : shown) {
        EXPECT_TRUE(line->visible());
        EXPECT_EQ(line->left(), 0);
        EXPECT_EQ(line->width(), page().FrameDate_0.width() - 300);
        EXPECT_EQ(line->foreColor(), 65280U);
        EXPECT_EQ(line->font().name(), u"Mono");
        EXPECT_EQ(line->font().size(), 12);
        EXPECT_EQ(line->mousePointer(), 99);
        EXPECT_TRUE(line->transparent());
    }
}

TEST_F(Welcome, WithoutStylingHasItsOwn) {
    start(whole("[databases]\ndatabases_1_Ubound=1\ndatabases_1_0_Str=x\n"));
    const forms::Label &line = page().databases_1_0;
    EXPECT_EQ(line.foreColor(), 8454016U);
    EXPECT_EQ(line.font().name(), u"Arial");
    EXPECT_EQ(line.font().size(), 9);
    EXPECT_EQ(line.top(), 100);
    EXPECT_FALSE(page().databases_0_0.visible()) << "a tab without a count has no lines";
}

TEST_F(Welcome, WithAGapThatIsNoNumberOffersARetry) {
    start(whole("databaseStr_Interval=wide\n[databases]\ndatabases_0_Ubound=1\n"));
    EXPECT_TRUE(page().visible());
    EXPECT_TRUE(page().load_Failed);
    EXPECT_TRUE(page().loadStr.visible());
    EXPECT_EQ(page().loadStr.caption(), u"数据错误，无法加载，请点击重试获取！");
    EXPECT_FALSE(page().tabButton_0.enabled());
    EXPECT_FALSE(page().FrameDate_0.visible());
}

TEST_F(Welcome, ARetryAndASecondOpeningMeetTheLinesThatExistAndFail) {
    const std::string two = whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Str=a\n"
                                  "databases_0_1_Str=b\n");
    start(two);
    EXPECT_FALSE(page().load_Failed);
    page().close_Click();
    start(two);
    EXPECT_TRUE(page().load_Failed);
    page().loadStr.on().Click();
    EXPECT_TRUE(page().load_Failed);
    page().load_Failed = false;
    fake.internet.log.clear();
    page().loadStr.on().Click();
    EXPECT_TRUE(fake.internet.log.empty()) << "nothing failed, so nothing is tried again";
}

TEST_F(Welcome, OfOneLineATabOpensAsOftenAsOneLikes) {
    const std::string one = whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\n");
    start(one);
    page().close_Click();
    start(one);
    EXPECT_FALSE(page().load_Failed);
}

TEST_F(Welcome, WithACountBeyondTheDataStopsAtItsEnd) {
    start(whole("[databases]\ndatabases_0_Ubound=20000\ndatabases_0_0_Str=a\n"
                "databases_0_2_Link=http://c\n"));
    EXPECT_FALSE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 3U);
    page().close_Click();
    start(whole("[databases]\ndatabases_0_Ubound=4\ndatabases_0_0_Str=a\n"));
    EXPECT_TRUE(page().load_Failed) << "the empty lines are there, too";
}

TEST_F(Welcome, WithMoreLinesThanAnArrayTakesFails) {
    start(whole("[databases]\ndatabases_0_Ubound=2000000000\ndatabases_0_0_Str=a\n"
                "[Advertising]\nAdvertisingNumbers=2000000000\nindex_0_Str=x\n"));
    EXPECT_TRUE(page().load_Failed);
    EXPECT_EQ(lines(page().FrameDate_0).size(), 1U);
    EXPECT_EQ(page().ad_Items.upperBound(), 4'000'000'000);
}

TEST_F(Welcome, LosesTheEmptyKeysThatItReads) {
    start(whole("databaseStr_Font=\n[Advertising]\nAdvertisingNumbers=2\nindex_0_Str=\n"
                "index_1_Str=b\nindex_1_Link=\nindex_2_Str=\n[databases]\n"
                "databases_0_Ubound=1\ndatabases_0_0_Str=\ndatabases_0_0_Link=\n"
                "databases_0_1_Str=\nother=\n"));
    EXPECT_EQ(files.contents(file()),
              "[check]\r\nvesion=1.0.0\r\nupdate=0\r\n[config]\r\ntitle=News\r\n"
              "provider=Norvane\r\nproviderLink=http://p/\r\nbuttonStr0=A\r\nbuttonStr1=B\r\n"
              "buttonStr2=C\r\n[Advertising]\r\nAdvertisingNumbers=2\r\nindex_1_Str=b\r\n"
              "index_2_Str=\r\n[databases]\r\ndatabases_0_Ubound=1\r\ndatabases_0_1_Str=\r\n"
              "other=\r\n")
        << "those that it does not ask for stay";
}

TEST_F(Welcome, HoldsItsFileWhileItReadsManyKeys) {
    start(whole("[Advertising]\nAdvertisingNumbers=1\nindex_0_Str=a\n[databases]\n"
                "databases_0_Ubound=1\ndatabases_0_0_Str=b\n"));
    bool isHeld = false;
    int outside = 0;
    for (const std::u16string &line : fake.profiles.log) {
        if (startsWith(line, u"hold "))
            isHeld = true;
        else if (startsWith(line, u"release "))
            isHeld = false;
        else
            outside += !isHeld;
        if (startsWith(line, u"read Advertising") || startsWith(line, u"read databases")) {
            EXPECT_TRUE(isHeld) << toUtf8(line);
        }
    }
    EXPECT_FALSE(isHeld);
    EXPECT_EQ(outside, 3) << "the version twice, and whether an update is needed";
}

TEST_F(Welcome, LetsItsFileGoWhereItFails) {
    start(whole("databaseStr_Color=x\n[databases]\ndatabases_0_Ubound=2\n"
                "databases_0_0_Str=\ndatabases_0_1_Str=\n"));
    EXPECT_TRUE(page().load_Failed);
    EXPECT_THAT(files.contents(file()), ::testing::HasSubstr("databases_0_1_Str="));
    EXPECT_THAT(files.contents(file()), ::testing::Not(::testing::HasSubstr("databases_0_0_Str=")));
    EXPECT_EQ(fake.profiles.log.back(), u"release " + file());
}

// --- clicks ---

TEST_F(Welcome, OpensWhatItsLinksNameAndNothingForAnEmptyBanner) {
    start(whole("[databases]\ndatabases_0_Ubound=2\ndatabases_0_0_Link=http://one\n"
                "databases_0_1_Link=http://two\n"));
    page().provider.on().Click();
    EXPECT_EQ(opened(), u"http://p/");
    lines(page().FrameDate_0)[0]->on().Click();
    EXPECT_EQ(opened(), u"http://one");
    lines(page().FrameDate_0)[1]->on().Click();
    EXPECT_EQ(opened(), u"http://two");
    const std::size_t count = fake.shell.executions.size();
    page().Advertising.on().Click();
    EXPECT_EQ(fake.shell.executions.size(), count);
    page().Advertising.setTag(u"http://ad");
    page().Advertising.on().Click();
    EXPECT_EQ(opened(), u"http://ad");
}

TEST_F(Welcome, ChangesTabs) {
    start(whole());
    page().tabButton_2.on().Click();
    EXPECT_FALSE(page().FrameDate_0.visible());
    EXPECT_TRUE(page().FrameDate_2.visible());
}

TEST_F(Welcome, StoresTheNumberOfItsCheckBox) {
    start(whole());
    EXPECT_EQ(page().autoShow.value(), 0);
    page().autoShow.userToggled();
    EXPECT_TRUE(app.setControl().get_AutoShowWelcome());
    page().close_Click();
    page().Start(false);
    EXPECT_EQ(page().autoShow.value(), 1);
    page().autoShow.userToggled();
    EXPECT_FALSE(app.setControl().get_AutoShowWelcome());
}

TEST_F(Welcome, ClosedTakesItsFileAndBannerAlongAndShowsTheHintAgain) {
    start(whole("[Advertising]\nAdvertisingNumbers=2\nindex_0_Str=a\nindex_1_Str=b\n"));
    EXPECT_TRUE(files.hasFile(file()));
    page().close.on().Click();
    expectClosed();
    EXPECT_THROW(page().ad_Items.upperBound(), RunTimeError);
}

TEST_F(Welcome, IsStartedByTheHintWhichHidesMeanwhile) {
    serve(whole());
    app.Main().welcome.setVisible(true);
    app.Main().welcome.on().Click();
    EXPECT_TRUE(page().visible());
    EXPECT_FALSE(app.Main().welcome.visible());
}

TEST_F(Welcome, IsStartedWithTheProgramWhenItIsSwitchedOn) {
    fake.registry.setText(u"SOFTWARE\\Norvane\\zkPlayer\\playSet", u"AutoShowWelcome", u"1");
    serve(whole());
    ProgramFixture::start();
    EXPECT_TRUE(page().visible());
    EXPECT_FALSE(app.Main().welcome.visible());
}

// --- the banner ---

class Banner : public Welcome {
protected:
    void startWith(int count, const std::string &entries) {
        start(whole("[Advertising]\nAdvertisingNumbers=" + std::to_string(count) + "\n" + entries));
    }
    forms::Label &label() { return page().Advertising; }
    static constexpr auto standing =
        u"Velmora是一款无需安装的绿色版播放器，它具有强大的媒体播放功能，皮肤精美，"
        u"是不想安装的用户的最佳选择。";
};

TEST_F(Banner, OfNoEntriesIsTheStandingTextWithoutALink) {
    startWith(0, "index_0_Str=a\n");
    EXPECT_EQ(label().caption(), standing);
    EXPECT_EQ(label().tag(), u"");
    tick(200);
    EXPECT_EQ(label().caption(), standing);
}

TEST_F(Banner, OfOneEmptyEntryOrANegativeCountIsTheStandingText) {
    startWith(1, "");
    EXPECT_EQ(label().caption(), standing);
    page().close_Click();
    startWith(-3, "index_0_Str=a\n");
    EXPECT_EQ(label().caption(), standing);
}

TEST_F(Banner, OfOneEntryShowsItAgainAndAgain) {
    startWith(1, "index_0_Str=a\nindex_0_Link=http://a\n");
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(label().tag(), u"http://a");
    tick(50);
    EXPECT_EQ(label().caption(), u"a");
    EXPECT_EQ(page().ad_Index, 0);
}

TEST_F(Banner, OfTwoEntriesHasAnEmptyPassBehindTheLast) {
    startWith(2, "index_0_Str=a\nindex_0_Link=http://a\nindex_1_Str=b\nindex_1_Link=http://b\n");
    Texts seen;
    for (int i = 0; i < 4; ++i) {
        seen.push_back(label().caption() + u" " + label().tag());
        tick(49);
        EXPECT_EQ(label().caption() + u" " + label().tag(), seen.back()) << "not one tick early";
        tick();
    }
    EXPECT_EQ(seen, (Texts{u"a http://a", u"b http://b", u" http://b", u"a http://a"}));
}

TEST_F(Banner, WiderThanItsBoxRunsOutAtTheLeftAndTheNextComesInFromTheRight) {
    const std::string wide(300, 'w');
    startWith(2, "index_0_Str=" + wide + "\nindex_1_Str=" + wide + "2\nindex_1_Link=http://b\n");
    ASSERT_GT(label().width(), page().AdvertisingBOX.width());
    label().setLeft(0);
    tick();
    EXPECT_EQ(label().left(), -50);
    label().setLeft(-(label().width() + 60));
    tick();
    EXPECT_EQ(label().tag(), u"1");
    tick();
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 100);
    EXPECT_EQ(label().caption().back(), u'2');
    EXPECT_EQ(label().tag(), u"http://b");
    tick();
    EXPECT_EQ(label().left(), page().AdvertisingBOX.width() + 50);
}

TEST_F(Banner, OfTheStandingTextKeepsTheWordsOfItsTag) {
    startWith(0, "");
    label().setCaption(std::u16string(300, u'w'));
    label().setTag(u"1");
    tick();
    EXPECT_EQ(label().tag(), u"0");
    EXPECT_EQ(label().caption(), std::u16string(300, u'w'));
    label().on().Click();
    EXPECT_EQ(opened(), u"0") << "the word goes out as a link that leads nowhere";
}

TEST_F(Banner, DividesEntriesAtTheMarkThatJoinsThem) {
    startWith(1, "index_0_Str=a|■|b\nindex_0_Link=c\n");
    EXPECT_EQ(page().ad_Items.upperBound(), 3);
    EXPECT_EQ(label().tag(), u"b");
}

} // namespace
} // namespace velmora
