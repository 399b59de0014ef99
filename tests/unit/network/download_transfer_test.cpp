// The transfer: packets, events and files in their order, and every way in which it ends.

#include "tests/unit/network/download_fixture.h"

#include "base/run_time_error.h"

namespace velmora {
namespace {

using fakes::FakeInternet;

const Lines opening = {u"Status 1", u"Status 2", u"Status 3", u"Status 4"};

class ToFile : public DownloadFixture {
protected:
    void expectFailure(const std::u16string &error) {
        EXPECT_FALSE(wd.DownloadToFile(u"music"));
        EXPECT_EQ(logFrom(u"InternetCloseHandle"), stopLines + these(error, u"DownloadEnd false"));
    }
};

TEST_F(ToFile, goesPacketByPacketInOneOrder) {
    net.respond(FakeInternet::answer("abcde"));
    wd.Pakesize = 3;
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(
        logFrom(u"HttpQueryInfoA"),
        (Lines{u"HttpQueryInfoA 3 21 1024",
               // what lies there, and goes
               u"file Dir", u"file CreateFileSystemObject", u"file DeleteFile",
               // its folder
               u"file Dir", u"file CreateFileA", u"file SetFilePointer", u"InternetReadFile 3 3",
               u"file WriteFile", u"Status 5", u"Progress 5.00 3.00 0.00", u"pump",
               u"InternetReadFile 3 3", u"file WriteFile", u"Status 5", u"Progress 5.00 5.00 0.00",
               u"pump", u"InternetReadFile 3 3", u"file CloseHandle"}) +
            stopLines + these(u"Status 6", u"DownloadEnd true"));
    EXPECT_EQ(files.contents(target), "abcde");
}

TEST_F(ToFile, readsPacketsOf1024Bytes) {
    net.respond(FakeInternet::answer(std::string(2500, 'x')));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(count(u"InternetReadFile 3 1024"), 4);
    EXPECT_EQ(count(u"pump"), 3);
    EXPECT_EQ(files.contents(target), std::string(2500, 'x'));
}

TEST_F(ToFile, tellsBytesASecond) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Pakesize = 3;
    net.meanwhile = [this] { fake.clock.sinceMidnight += 1.5; };
    wd.DownloadToFile(u"music");
    EXPECT_THAT(net.log, ::testing::Contains(u"Progress 6.00 3.00 2.00"));
    EXPECT_THAT(net.log, ::testing::Contains(u"Progress 6.00 6.00 2.00"));
}

TEST_F(ToFile, keepsItsLastSpeedWhenTheDayEnds) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Pakesize = 3;
    fake.clock.sinceMidnight = 86'398;
    net.meanwhile = [this] {
        fake.clock.sinceMidnight = fake.clock.sinceMidnight >= 86'398 ? 86'399 : 0;
        net.meanwhile = [this] { fake.clock.sinceMidnight = 1; };
    };
    wd.DownloadToFile(u"music");
    EXPECT_THAT(net.log, ::testing::Contains(u"Progress 6.00 3.00 3.00"));
    EXPECT_THAT(net.log, ::testing::Contains(u"Progress 6.00 6.00 3.00"));
}

TEST_F(ToFile, beginsWithTheSpeedOfTheLastTransfer) {
    net.respond(FakeInternet::answer("abcdef"));
    net.meanwhile = [this] { fake.clock.sinceMidnight += 2; };
    wd.DownloadToFile(u"music");
    net.meanwhile = nullptr;
    net.log.clear();
    net.respond(FakeInternet::answer("abc"));
    wd.DownloadToFile(u"music");
    EXPECT_EQ(count(u"Progress 3.00 3.00 3.00"), 1); // no time has passed
}

TEST_F(ToFile, countsItsTimeFromTheOpeningOfTheTarget) {
    net.respond(FakeInternet::answer("abcdef"));
    files.onCall = [this](const std::string &operation) {
        if (operation == "CreateFileA")
            fake.clock.sinceMidnight += 100;
    };
    net.meanwhile = [this] { fake.clock.sinceMidnight += 2; };
    wd.DownloadToFile(u"music");
    EXPECT_EQ(count(u"Progress 6.00 6.00 3.00"), 1);
}

TEST_F(ToFile, leavesWhatCannotBeDeletedWholeAndTellsOfIt) {
    files.addFile(target, "longer than the new one");
    files.failNext("DeleteFile");
    net.respond(FakeInternet::answer("123"));
    expectFailure(u"Error 7");
    EXPECT_EQ(files.contents(target), "longer than the new one");
    // The next transfer does not know of it.
    net.respond(FakeInternet::answer("123"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "123");
}

TEST_F(ToFile, goesOnWhenTheLookUpFails) {
    files.failNext("Dir");
    net.respond(FakeInternet::answer("123"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "123");
}

TEST_F(ToFile, comparesAnUnknownSizeAsOneWithTheNamesLength) {
    wd.FileName = u"/home/user/cache/x";
    files.addFile(wd.FileName, "old");
    wd.ReDown = false;
    respondWith({"HTTP/1.1 200 OK", "Content-Type: audio/mpeg"}, "abc");
    expectFailure(u"Error 5");
}

TEST_F(ToFile, asksForItsFolderBySpellingItsTargetAnew) {
    wd.FileName = u"/home//user//cache//x.mp3";
    net.respond(FakeInternet::answer("abc"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(wd.FileName, u"/home/user/cache/x.mp3");
    EXPECT_EQ(files.contents(u"/home/user/cache/x.mp3"), "abc");
}

TEST_F(ToFile, stoppedWhileItReadsIsSeenBehindThePacket) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Pakesize = 2;
    wd.Progress = [this](double, double, double) { wd.bStop(); };
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "ab");
    EXPECT_EQ(count(u"pump"), 1); // the packet's pump comes all the same
}

TEST_F(ToFile, countsAnUnknownSizeAsOne) {
    respondWith({"HTTP/1.1 200 OK", "Content-Type: audio/mpeg"}, "abc");
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(count(u"Progress 1.00 3.00"), 1);
    EXPECT_EQ(files.contents(target), "abc");
}

TEST_F(ToFile, takesTheAnswerOf404ForAFile) {
    net.respond(FakeInternet::answer("gone", "audio/x", "HTTP/1.1 404 Not Found"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "gone");
}

TEST_F(ToFile, takesACutBodyForItsEnd) {
    auto cut = FakeInternet::answer("abcdef");
    cut.resetAt = 4;
    net.respond(cut);
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "abcd");
    EXPECT_EQ(events().back(), u"DownloadEnd true");
}

TEST_F(ToFile, takesAReadThatFailsForTheEnd) {
    net.respond(FakeInternet::answer("abcdef"));
    net.failNext("InternetReadFile");
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "");
}

TEST_F(ToFile, endsWellAlthoughNoByteCouldBeWritten) {
    net.respond(FakeInternet::answer("abcdef"));
    files.failNext("WriteFile");
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "");
    net.respond(FakeInternet::answer("abcdef"));
    files.setFreeSpace(2);
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "ab");
}

TEST_F(ToFile, withoutAPacketSizeEndsAtOnce) {
    for (const std::int32_t size : {0, -1, -2147483647}) {
        net.respond(FakeInternet::answer("abcdef"));
        wd.Pakesize = size;
        EXPECT_TRUE(wd.DownloadToFile(u"music"));
        EXPECT_EQ(files.contents(target), "");
    }
}

// --- refusals -----------------------------------------------------------------------------------

TEST_F(ToFile, failsOnARequestThatReachedNobody) {
    expectFailure(u"Error 8"); // no header, so no size
}

TEST_F(ToFile, failsOnAnEmptyBody) {
    net.respond(FakeInternet::answer(""));
    expectFailure(u"Error 8");
}

TEST_F(ToFile, failsOnAHeaderThatIsTooLong) {
    respondWith({"HTTP/1.1 200 OK", "Content-Length: 4", "Content-Type: audio/mpeg",
                 "X: " + std::string(1024, 'x')});
    expectFailure(u"Error 8");
}

TEST_F(ToFile, takesSoundAndPicturesInAnyCase) {
    for (const char *type : {"audio/mpeg", "AUDIO/x", "Video/mp4", "audio", "videos"}) {
        net.respond(FakeInternet::answer("abc", type));
        EXPECT_TRUE(wd.DownloadToFile(u"music")) << type;
    }
}

TEST_F(ToFile, failsOnAnotherType) {
    for (const char *type : {"text/html", "audi", "application/octet-stream", " audio/mpeg", ""}) {
        net.respond(FakeInternet::answer("abc", type));
        net.log.clear();
        EXPECT_FALSE(wd.DownloadToFile(u"music")) << type;
        EXPECT_EQ(events(), opening + (Lines{u"Error 9", u"DownloadEnd false"})) << type;
        EXPECT_EQ(count(u"file"), 0);
    }
}

TEST_F(ToFile, failsOnAnotherKindOnlyBehindTheRequest) {
    for (const std::u16string_view kind : {u"Music", u"", u"music "}) {
        net.respond(FakeInternet::answer("abc"));
        net.log.clear();
        EXPECT_FALSE(wd.DownloadToFile(kind));
        EXPECT_EQ(events(), opening + (Lines{u"Error 9", u"DownloadEnd false"}));
        EXPECT_EQ(count(u"HttpSendRequestA"), 1);
    }
}

TEST_F(ToFile, comparesTheLengthOfTheTargetsNameWithTheSize) {
    files.addFile(target, std::string(1000, 'o')); // "song.mp3": 8 units
    wd.ReDown = false;
    net.respond(FakeInternet::answer("12345678"));
    expectFailure(u"Error 5");
    EXPECT_EQ(files.contents(target).size(), 1000U);
    // A file of the very size is fetched anew.
    files.addFile(target, std::string(1000, 'o'));
    net.respond(FakeInternet::answer(std::string(1000, 'n')));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), std::string(1000, 'n'));
}

TEST_F(ToFile, fetchesAnewWhatCountsAsComplete) {
    files.addFile(target, "old content that is longer");
    net.respond(FakeInternet::answer("12345678"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "12345678");
}

TEST_F(ToFile, countsTheNameAsItIsOnTheDisk) {
    files.addFile(u"/home/user/cache/SONG.MP3", "other case");
    wd.ReDown = false;
    net.respond(FakeInternet::answer("12345678"));
    expectFailure(u"Error 5");
}

TEST_F(ToFile, deletesTheTargetAheadOfTheTransfer) {
    files.addFile(target, "old");
    net.respond(FakeInternet::answer("new"));
    net.meanwhile = [this] {
        EXPECT_EQ(files.contents(target), "");
        net.meanwhile = nullptr;
    };
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
}

TEST_F(ToFile, makesTheFoldersOfItsTarget) {
    wd.FileName = u"/home/user/new/er/x.mp3";
    net.respond(FakeInternet::answer("abc"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(u"/home/user/new/er/x.mp3"), "abc");
}

TEST_F(ToFile, failsWithoutAnAbsoluteTarget) {
    for (const std::u16string_view name : {u"song.mp3", u"cache/song.mp3", u""}) {
        wd.FileName = name;
        net.respond(FakeInternet::answer("abc"));
        net.log.clear();
        EXPECT_FALSE(wd.DownloadToFile(u"music"));
        EXPECT_EQ(events(), opening + (Lines{u"Error 6", u"DownloadEnd false"}));
    }
}

TEST_F(ToFile, failsWhenTheTargetCannotBeOpened) {
    files.addFile(target, "old");
    files.setReadOnly(target);
    net.respond(FakeInternet::answer("abc"));
    expectFailure(u"Error 7");
    EXPECT_EQ(files.contents(target), "old");
    EXPECT_EQ(count(u"InternetReadFile"), 0);
    files.setReadOnly(target, false);
    files.setReadOnly(u"/home/user/cache");
    net.respond(FakeInternet::answer("abc"));
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "old");
}

TEST_F(ToFile, failsWhenItsFoldersCannotBeMade) {
    files.setReadOnly(u"/home/user");
    wd.FileName = u"/home/user/new/x.mp3";
    net.respond(FakeInternet::answer("abc"));
    expectFailure(u"Error 7");
}

// --- stopping -----------------------------------------------------------------------------------

TEST_F(ToFile, stoppedInAPumpLeavesItsPart) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Pakesize = 2;
    fake.windows.atNextPump([] {});
    fake.windows.atNextPump([this] { wd.bStop(); });
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    const Lines packet = {u"InternetReadFile 3 2", u"file WriteFile", u"Status 5"};
    EXPECT_EQ(logFrom(u"InternetReadFile"),
              packet + these(u"Progress 6.00 2.00 0.00", u"pump") + packet +
                  these(u"Progress 6.00 4.00 0.00", u"pump") + stopLines + stopLines +
                  these(u"Error 4", u"DownloadEnd false", u"file CloseHandle"));
    EXPECT_EQ(files.contents(target), "abcd");
}

TEST_F(ToFile, stoppedInItsRequestReadsNoHeader) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Status = [this](std::int32_t code) {
        if (code == 4)
            wd.bStop();
    };
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(logFrom(u"Error"), (Lines{u"Error 4", u"DownloadEnd false"}));
    EXPECT_EQ(count(u"file"), 0);
    (void)net.HttpSendRequestA(net.InternetOpenA(u""), u"", 0); // takes the answer
}

TEST_F(ToFile, stoppedWithItsLastPacketIsStopped) {
    net.respond(FakeInternet::answer("ab"));
    fake.windows.atNextPump([this] { wd.bStop(); });
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(events().back(), u"DownloadEnd false");
}

TEST_F(ToFile, isUsedAgainBehindAnyEnd) {
    net.respond(FakeInternet::answer("abcdef"));
    fake.windows.atNextPump([this] { wd.bStop(); });
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    net.failNext("InternetOpenA");
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
    net.respond(FakeInternet::answer("second"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_EQ(files.contents(target), "second");
    EXPECT_EQ(net.openHandles(), 0U);
}

TEST_F(ToFile, goesOnWhenAHandlerRaises) {
    const auto raising = [](auto...) { raise(ErrorNumber::General); };
    wd.Status = raising;
    wd.Progress = raising;
    wd.DownloadEnd = raising;
    wd.Error = raising;
    net.respond(FakeInternet::answer("abc"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_FALSE(wd.DownloadToFile(u"music")); // no answer any more
}

TEST_F(ToFile, needsNobodyToListen) {
    wd.Status = nullptr;
    wd.Progress = nullptr;
    wd.DownloadEnd = nullptr;
    wd.Error = nullptr;
    net.respond(FakeInternet::answer("abc"));
    EXPECT_TRUE(wd.DownloadToFile(u"music"));
    EXPECT_FALSE(wd.DownloadToFile(u"music"));
}

// --- texts --------------------------------------------------------------------------------------

class ToText : public DownloadFixture {};

TEST_F(ToText, goesPacketByPacketInOneOrder) {
    net.respond(FakeInternet::answer("abcde", "text/html"));
    wd.Pakesize = 3;
    EXPECT_EQ(wd.DownLoadToText(), u"abcde");
    EXPECT_EQ(logFrom(u"HttpQueryInfoA"),
              (Lines{u"HttpQueryInfoA 3 21 1024", u"InternetReadFile 3 3", u"decodeCharset gb2312",
                     u"Status 5", u"Progress 5.00 3.00 0.00", u"pump", u"InternetReadFile 3 3",
                     u"decodeCharset gb2312", u"Status 5", u"Progress 5.00 5.00 0.00", u"pump",
                     u"InternetReadFile 3 3"}) +
                  stopLines + these(u"Status 6", u"DownloadEnd true"));
}

TEST_F(ToText, decodesEachPacketAlone) {
    const std::string bytes = "\xB8\xE8\xB4\xCA"; // two characters of two bytes
    net.respond(FakeInternet::answer(bytes));
    EXPECT_EQ(wd.DownLoadToText(), u"歌词");
    net.respond(FakeInternet::answer(bytes));
    wd.Pakesize = 2;
    EXPECT_EQ(wd.DownLoadToText(), u"歌词");
    net.respond(FakeInternet::answer(bytes));
    wd.Pakesize = 3;
    EXPECT_THAT(toUtf8(wd.DownLoadToText()), ::testing::HasSubstr("\xEF\xBF\xBD"));
    net.respond(FakeInternet::answer("\xE6\xAD\x8C"));
    wd.Charset = u"utf-8";
    EXPECT_EQ(wd.DownLoadToText(), u"歌");
}

TEST_F(ToText, passesOverAPacketThatCannotBeDecoded) {
    net.respond(FakeInternet::answer("abcd"));
    wd.Pakesize = 2;
    net.failNext("decodeCharset");
    EXPECT_EQ(wd.DownLoadToText(), u"cd");
    EXPECT_EQ(count(u"Progress"), 2);
}

TEST_F(ToText, isEmptyAndEndsWellWhenTheRequestReachedNobody) {
    EXPECT_EQ(wd.DownLoadToText(), u"");
    EXPECT_EQ(events(), opening + (Lines{u"Status 6", u"DownloadEnd true"}));
}

TEST_F(ToText, stoppedGivesWhatCame) {
    net.respond(FakeInternet::answer("abcdef"));
    wd.Pakesize = 2;
    fake.windows.atNextPump([this] { wd.bStop(); });
    EXPECT_EQ(wd.DownLoadToText(), u"ab");
    EXPECT_EQ(logFrom(u"InternetCloseHandle"),
              stopLines + stopLines + these(u"Error 4", u"DownloadEnd false"));
}

TEST_F(ToText, stoppedInItsRequestIsEmpty) {
    wd.Status = [this](std::int32_t code) {
        if (code == 4)
            wd.bStop();
    };
    EXPECT_EQ(wd.DownLoadToText(), u"");
    EXPECT_EQ(events(), (Lines{u"Error 4", u"DownloadEnd false"}));
    EXPECT_EQ(count(u"InternetReadFile"), 0) << "what is closed is not read";
}

TEST_F(ToText, beginsWithoutASpeed) {
    net.respond(FakeInternet::answer("abc"));
    net.meanwhile = [this] { fake.clock.sinceMidnight += 1; };
    wd.DownLoadToText();
    EXPECT_EQ(count(u"Progress 3.00 3.00 3.00"), 1);
    net.meanwhile = nullptr;
    net.log.clear();
    net.respond(FakeInternet::answer("abc"));
    wd.DownLoadToText();
    EXPECT_EQ(count(u"Progress 3.00 3.00 0.00"), 1);
}

} // namespace
} // namespace velmora
