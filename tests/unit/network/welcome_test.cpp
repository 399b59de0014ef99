// The maker's page of news and links.

#include "tests/unit/network/welcome_fixture.h"

namespace velmora {
namespace {

class Welcome : public WelcomeFixture {};

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

TEST_F(Welcome, AskedForByAPersonTriesHostsAnewThatDidNotAnswerAndSilentDoesNot) {
    page().Start(true);
    EXPECT_EQ(fake.internet.triedAnew, 0);
    expectBox(u"远程数据传输错误！");
    page().Start(false);
    EXPECT_EQ(fake.internet.triedAnew, 1);
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

TEST_F(Welcome, IsFetchedInOneOrder) {
    serve(whole());
    files.addFile(file(), "of an earlier load");
    windows.onPump = [&] { fake.internet.log.emplace_back(u"pump"); };
    fake.shell.onCommandLine = [&](std::u16string_view) { fake.internet.log.emplace_back(u"del"); };
    page().Start(false);
    const std::u16string address = u"http://maker/source/mini/zkPlayerWelcome.php";
    EXPECT_EQ(fake.internet.log,
              (Texts{u"InternetGetConnectedState", u"DeleteUrlCacheEntryA " + address, u"del",
                     u"pump", u"URLDownloadToFileA " + address + u" " + file()}));
    EXPECT_EQ(page().welcome_Url, address);
    EXPECT_EQ(page().welcome_Result, 0);
}

TEST_F(Welcome, PassesOverACacheThatRefuses) {
    fake.internet.failNext("DeleteUrlCacheEntryA");
    start(whole());
    EXPECT_TRUE(page().visible());
}

// What a box of the load is told over: the window stays for want of a network, and is hidden for
// everything else.
TEST_F(Welcome, IsHiddenBehindEachBoxButThatOfTheNetwork) {
    start(whole());
    bool shown = false;
    const auto look = [&] {
        shown = page().visible();
        EXPECT_FALSE(app.Main().welcome.visible()) << "shown only behind the box";
    };
    const auto expectBoxOver = [&](std::u16string_view text) {
        windows.expectMsgBox(boxOf(text, MsgBoxIcon::Critical, app.Language().msg_Error),
                             MsgBoxResult::Ok, look);
        app.Main().welcome.setVisible(false);
        page().show();
    };
    fake.internet.connectedState = 0;
    expectBoxOver(app.Language().msg_No_Network);
    page().Start(false);
    EXPECT_TRUE(shown);
    fake.internet.connectedState = 1;
    fake.internet.failNext("URLDownloadToFileA");
    expectBoxOver(u"远程数据传输错误！");
    page().Start(false);
    EXPECT_FALSE(shown);
    shown = true;
    expectBoxOver(u"远程数据错误！");
    start("nothing");
    EXPECT_FALSE(shown);
    EXPECT_EQ(page().loadStr.caption(), u"分析数据中...");
    shown = true;
    expectBoxOver(u"远程数据错误！");
    start("[check]\nvesion=1\nupdate=0\n");
    EXPECT_FALSE(shown);
    shown = true;
    expectBoxOver(u"您当前的程序与资讯要求匹配版本低，在此版本上以无法提供正确数据加载，"
                  u"请您更新您的程序后在此启用！");
    start(whole({}, "[check]\nvesion=1.0.1\nupdate=1\n"));
    EXPECT_FALSE(shown);
}

TEST_F(Welcome, SaysWhileItIsFetchedThatItIs) {
    page().loadStr.setCaption(u"of the last time");
    std::u16string said;
    fake.internet.duringDownload = [&] { said = page().loadStr.caption(); };
    start(whole());
    EXPECT_EQ(said, u"正在下载资源...");
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
                         MsgBoxResult::Ok, [&] { EXPECT_FALSE(page().visible()); });
    page().show();
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
        EXPECT_EQ(line->mouseIcon(), forms::MouseIcon::Hand);
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

TEST_F(Welcome, ThatLoadsBehindAFailureOffersNoRetry) {
    start(whole("databaseStr_Interval=wide\n[databases]\ndatabases_0_Ubound=1\n"));
    ASSERT_TRUE(page().load_Failed);
    serve(whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\n"));
    clickOn(page().loadStr);
    EXPECT_FALSE(page().load_Failed);
    EXPECT_FALSE(page().loadStr.visible());
    EXPECT_TRUE(page().tabButton_0.enabled());
    EXPECT_TRUE(page().FrameDate_0.visible());
}

TEST_F(Welcome, LeadsToTheWebAndToALetterAndToNothingOfThisMachine) {
    for (const char *link : {"/etc/passwd", "../x", "file:///etc/passwd", "x.desktop", "0", "",
                             "mailto:a@b?attach=/etc/passwd", "MAILTO:a@b?subject=x&ATTACHMENT=/x",
                             "ssh://x", "httpx://y", "/opt/velmora/zkPlayer [3.1.0].exe"}) {
        start(whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\ndatabases_0_0_Link=" +
                    std::string(link) + "\n"));
        clickOn(page().databases_0_0);
        EXPECT_TRUE(opened().empty()) << link;
    }
    for (const char *link : {"http://a/b", "HTTPS://a", "mailto:a@b?subject=x"}) {
        start(whole("[databases]\ndatabases_0_Ubound=1\ndatabases_0_0_Str=a\ndatabases_0_0_Link=" +
                    std::string(link) + "\n"));
        clickOn(page().databases_0_0);
        EXPECT_EQ(toUtf8(opened()), link);
    }
}

TEST_F(Welcome, LosesTheEmptyKeysThatItReads) {
    start(whole("databaseStr_Font=\n[Advertising]\nAdvertisingNumbers=2\nindex_0_Str=\n"
                "index_1_Str=b\nindex_1_Link=\nindex_2_Str=\n[databases]\n"
                "databases_0_Ubound=1\ndatabases_0_0_Str=\ndatabases_0_0_Link=\n"
                "databases_0_1_Str=\nother=\n"));
    EXPECT_EQ(files.contents(file()),
              "[check]\nvesion=1.0.0\nupdate=0\n[config]\ntitle=News\n"
              "provider=Norvane\nproviderLink=http://p/\nbuttonStr0=A\nbuttonStr1=B\n"
              "buttonStr2=C\n[Advertising]\nAdvertisingNumbers=2\nindex_1_Str=b\n"
              "index_2_Str=\n[databases]\ndatabases_0_Ubound=1\ndatabases_0_1_Str=\n"
              "other=\n")
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
        if (startsWith(line, u"read Advertising") || startsWith(line, u"read databases"))
            EXPECT_TRUE(isHeld) << toUtf8(line);
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
    clickOn(page().provider);
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
    clickOn(page().tabButton_2);
    EXPECT_FALSE(page().FrameDate_0.visible());
    EXPECT_TRUE(page().FrameDate_2.visible());
}

TEST_F(Welcome, ShowsInItsCheckBoxWhatIsStored) {
    constexpr auto key = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
    for (const auto &[stored, shown] : {std::pair{u"1", 1}, {u"0", 0}, {u"2", 1}}) {
        fake.registry.setText(key, u"AutoShowWelcome", stored);
        start(whole());
        EXPECT_EQ(page().autoShow.value(), shown) << toUtf8(stored);
    }
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

TEST_F(Welcome, CountsTheGreyStateOfItsCheckBoxAsChecked) {
    start(whole());
    page().autoShow.setValue(2);
    clickOn(page().autoShow);
    EXPECT_EQ(page().autoShow.value(), 2);
    EXPECT_TRUE(app.setControl().get_AutoShowWelcome());
}

TEST_F(Welcome, WithACountThatBeginsWithANumberTakesThat) {
    start(whole("[databases]\ndatabases_2_Ubound=2 lines\ndatabases_2_0_Str=a\n"
                "databases_2_1_Str=b\ndatabases_2_2_Str=c\n"));
    EXPECT_EQ(lines(page().FrameDate_2).size(), 2U);
    EXPECT_FALSE(page().load_Failed);
}

TEST_F(Welcome, ClosedByTheWindowManagerIsClosedAsByItsButtonAndStays) {
    start(whole());
    ASSERT_TRUE(files.hasFile(file()));
    page().unload();
    expectClosed();
    start(whole());
    EXPECT_TRUE(page().visible());
    EXPECT_EQ(page().title.caption(), u"News");
}

TEST_F(Welcome, IsDraggedByItselfItsTitleAndItsIcon) {
    start(whole());
    const std::array<forms::ControlEvents *, 3> handles{&page().on(), &page().title.on(),
                                                        &page().title_ICO.on()};
    for (forms::ControlEvents *handle : handles) {
        page().move({3000, 3000, page().width(), page().height()});
        windows.cursor = {210, 220};
        handle->MouseDown({forms::leftButton, 0, 150, 300});
        windows.cursor = {220, 240};
        handle->MouseMove({forms::leftButton, 0, 150, 300});
        EXPECT_EQ(page().left(), 3150);
        EXPECT_EQ(page().top(), 3300);
    }
}

TEST_F(Welcome, SaysAtLastThatItLoadsWhatItFetched) {
    start(whole());
    EXPECT_EQ(page().loadStr.caption(), u"加载数据中...");
}

TEST_F(Welcome, ClosedTakesItsFileAndBannerAlongAndShowsTheHintAgain) {
    start(whole("[Advertising]\nAdvertisingNumbers=2\nindex_0_Str=a\nindex_1_Str=b\n"));
    EXPECT_TRUE(files.hasFile(file()));
    clickOn(page().close);
    expectClosed();
    EXPECT_THROW(page().ad_Items.upperBound(), RunTimeError);
}

TEST_F(Welcome, IsStartedByTheHintWhichHidesMeanwhile) {
    serve(whole());
    app.Main().welcome.setVisible(true);
    clickOn(app.Main().welcome);
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

} // namespace
} // namespace velmora
