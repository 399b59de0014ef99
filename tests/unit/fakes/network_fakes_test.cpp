// The network and the INI files in memory.

#include "tests/fakes/fake_platform.h"

#include "base/run_time_error.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace velmora::fakes {
namespace {

using platform::InternetHandle;
using Lines = std::vector<std::u16string>;

struct TheNetworkInMemory : testing::Test {
    FakePlatform fake;
    FakeInternet &net = fake.internet;

    InternetHandle request() {
        const InternetHandle session = net.InternetOpenA(u"agent");
        const InternetHandle server =
            net.InternetConnectA(session, u"host", 80, std::nullopt, u"", 3);
        return net.HttpOpenRequestA(server, u"GET", u"/", u"HTTP/1.0", 0);
    }
};

TEST_F(TheNetworkInMemory, writesDownEachCallWithItsArguments) {
    net.InternetOpenA(u"agent");
    net.InternetConnectA(1, u"host", 81, std::nullopt, u"secret", 3);
    net.HttpAddRequestHeadersA(7, u"A: b\r\n", 5);
    net.InternetCloseHandle(1);
    EXPECT_EQ(net.log, (Lines{u"InternetOpenA agent", u"InternetConnectA 1 host 81 - secret 3",
                              u"HttpAddRequestHeadersA 7 A: b\r\n 5", u"InternetCloseHandle 1"}));
}

TEST_F(TheNetworkInMemory, servesAScriptedAnswerAndCutsItWhereToldTo) {
    net.respond(FakeInternet::answer("abcdef"));
    auto cut = FakeInternet::answer("abcdef");
    cut.resetAt = 5;
    net.respond(cut);
    for (const bool whole : {true, false}) {
        const InternetHandle handle = request();
        EXPECT_TRUE(net.HttpSendRequestA(handle, u"", 0));
        EXPECT_EQ(
            net.HttpQueryInfoA(handle, 21, 1024),
            std::string("HTTP/1.1 200 OK\0Content-Length: 6\0Content-Type: audio/mpeg\0", 59));
        EXPECT_EQ(net.HttpQueryInfoA(handle, 21, 58), std::nullopt);
        std::string bytes;
        EXPECT_TRUE(net.InternetReadFile(handle, 4, bytes));
        EXPECT_EQ(bytes, "abcd");
        EXPECT_TRUE(net.InternetReadFile(handle, 4, bytes));
        EXPECT_EQ(bytes, whole ? "ef" : "e");
        EXPECT_EQ(net.InternetReadFile(handle, 4, bytes), whole);
        EXPECT_EQ(bytes, "");
    }
}

TEST_F(TheNetworkInMemory, sendsNothingWithoutAScriptedAnswer) {
    const InternetHandle handle = request();
    EXPECT_FALSE(net.HttpSendRequestA(handle, u"", 0));
    EXPECT_EQ(net.HttpQueryInfoA(handle, 21, 1024), std::nullopt);
    std::string bytes;
    EXPECT_FALSE(net.InternetReadFile(handle, 4, bytes));
}

TEST_F(TheNetworkInMemory, failsAtTheCallThatIsAskedFor) {
    net.failNext("InternetOpenA");
    EXPECT_EQ(net.InternetOpenA(u""), 0U);
    EXPECT_NE(net.InternetOpenA(u""), 0U);
    net.failNext("DeleteUrlCacheEntryA");
    EXPECT_THROW(net.DeleteUrlCacheEntryA(u""), RunTimeError);
}

TEST_F(TheNetworkInMemory, servesPagesByTheirAddressOneAfterTheOther) {
    net.setPage(u"http://a/", "one");
    net.addRaise(u"http://a/");
    net.addIncomplete(u"http://a/");
    net.setPage(u"http://a/", "two");
    EXPECT_EQ(net.XmlHttpGet(u"http://a/"), "one");
    EXPECT_THROW(net.XmlHttpGet(u"http://a/"), RunTimeError);
    EXPECT_EQ(net.XmlHttpGet(u"http://a/"), std::nullopt);
    EXPECT_EQ(net.XmlHttpGet(u"http://a/"), "two");
    EXPECT_EQ(net.XmlHttpGet(u"http://a/"), "two");
    EXPECT_THROW(net.XmlHttpGet(u"http://b/"), RunTimeError);
}

TEST_F(TheNetworkInMemory, bringsDownloadsToTheDisk) {
    fake.files.addFolder(u"/d/e");
    net.setDownload(u"http://a/f", "bytes");
    EXPECT_EQ(net.URLDownloadToFileA(u"http://a/f", u"/d/e/f", platform::programFile), 0);
    EXPECT_EQ(fake.files.contents(u"/d/e/f"), "bytes");
    EXPECT_NE(net.URLDownloadToFileA(u"http://a/g", u"/d/e/f", platform::programFile), 0);
    EXPECT_NE(net.URLDownloadToFileA(u"http://a/f", u"/none/f", platform::programFile), 0);
    EXPECT_EQ(fake.files.contents(u"/d/e/f"), "bytes");
}

TEST_F(TheNetworkInMemory, decodesThePagesOfTheWeb) {
    EXPECT_EQ(net.decodeCharset("\xB8\xE8\xB4\xCA", u"GB2312"), u"歌词");
    EXPECT_EQ(net.decodeCharset("\xFF<", u"gb2312"), u"\xFFFD<");
    EXPECT_EQ(net.decodeCharset("\xE6\xAD\x8C", u"utf-8"), u"歌");
    EXPECT_THROW(net.decodeCharset("", u"klingon"), RunTimeError);
}

TEST(TheNetworkInMemoryAtItsEnd, reportsWhatWasScriptedAndNeverAskedFor) {
    const auto leave = [](auto script) {
        FakePlatform fake;
        script(fake.internet);
    };
    EXPECT_NONFATAL_FAILURE(leave([](auto &net) { net.failNext("InternetOpenA"); }), "never met");
    EXPECT_NONFATAL_FAILURE(leave([](auto &net) { net.setPage(u"a", ""); }), "never asked");
    EXPECT_NONFATAL_FAILURE(leave([](auto &net) { net.setDownload(u"a", ""); }), "never asked");
    EXPECT_NONFATAL_FAILURE(leave([](auto &net) { net.respond(FakeInternet::answer("")); }),
                            "never asked");
}

struct IniFilesInMemory : testing::Test {
    FakePlatform fake;
    FakeProfiles &ini = fake.profiles;
    const std::u16string file = u"/d/e/a.ini";

    void lies(const std::string &text) { fake.files.addFile(file, text); }
    std::u16string read(std::u16string_view section, std::u16string_view key) {
        return ini.GetPrivateProfileStringA(section, key, u"-", 1000, file);
    }
};

TEST_F(IniFilesInMemory, readTheFirstKeyOfTheFirstSectionWithoutRegardToCase) {
    lies("[A]\r\nk = one\r\nK=two\r\n;c=no\r\n[b]\r\nk=\"three\"\r\n[a]\r\nnew=x\r\n");
    EXPECT_EQ(read(u"a", u"k"), u"one");
    EXPECT_EQ(read(u"B", u"K"), u"three");
    EXPECT_EQ(read(u"a", u"new"), u"-");
    EXPECT_EQ(read(u"a", u";c"), u"-");
    EXPECT_EQ(read(u"c", u"k"), u"-");
    EXPECT_EQ(ini.GetPrivateProfileStringA(u"b", u"k", u"", 4, file), u"thr");
}

TEST_F(IniFilesInMemory, loseAKeyThatIsWrittenAsNullAndNothingElse) {
    lies("[a]\r\nk=\r\nl=1\r\n");
    EXPECT_TRUE(ini.WritePrivateProfileStringA(u"a", u"none", std::nullopt, file));
    EXPECT_EQ(fake.files.changes().size(), 0U);
    EXPECT_TRUE(ini.WritePrivateProfileStringA(u"a", u"k", std::nullopt, file));
    EXPECT_EQ(fake.files.contents(file), "[a]\r\nl=1\r\n");
    EXPECT_TRUE(ini.WritePrivateProfileStringA(u"a", u"m", u"2", file));
    EXPECT_EQ(fake.files.contents(file), "[a]\r\nl=1\r\nm=2\r\n");
    EXPECT_TRUE(ini.WritePrivateProfileStringA(u"a", u"m", std::nullopt, u"/d/e/none.ini"));
    EXPECT_FALSE(fake.files.hasFile(u"/d/e/none.ini"));
}

TEST_F(IniFilesInMemory, sayByteSizesWithThreeDigitsCut) {
    EXPECT_EQ(ini.StrFormatByteSizeA(0), u"0 bytes");
    EXPECT_EQ(ini.StrFormatByteSizeA(1023), u"1023 bytes");
    EXPECT_EQ(ini.StrFormatByteSizeA(1024), u"1.00 KB");
    EXPECT_EQ(ini.StrFormatByteSizeA(1340), u"1.30 KB");
    EXPECT_EQ(ini.StrFormatByteSizeA(23506), u"22.9 KB");
    EXPECT_EQ(ini.StrFormatByteSizeA(240'650), u"235 KB");
    EXPECT_EQ(ini.StrFormatByteSizeA(2'147'483'647), u"1.99 GB");
}

struct PiecesInMemory : testing::Test {
    FakePlatform fake;
};

TEST_F(PiecesInMemory, areWrittenIntoTheFileAsLongAsItLies) {
    fake.files.addFile(u"/d/e/f", "abcdef");
    const auto file = fake.files.CreateFileA(u"/d/e/f");
    EXPECT_TRUE(file->WriteFile("12"));
    EXPECT_EQ(fake.files.contents(u"/d/e/f"), "12cdef");
    fake.files.setFreeSpace(1);
    EXPECT_FALSE(file->WriteFile("34"));
    EXPECT_EQ(fake.files.contents(u"/d/e/f"), "123def");
    fake.files.setFreeSpace(std::nullopt);
    fake.files.failNext("WriteFile");
    EXPECT_FALSE(file->WriteFile("4"));
    fake.files.remove(u"/d/e/f");
    EXPECT_TRUE(file->WriteFile("5"));
    EXPECT_FALSE(fake.files.hasFile(u"/d/e/f"));
    EXPECT_THROW(fake.files.CreateFileA(u"/none/f"), RunTimeError);
}

} // namespace
} // namespace velmora::fakes
