#pragma once

// A client on the network in memory. One log holds, in their order, the calls to the network, the
// client's events, the pumps, and what happens to files.

#include "base/numbers.h"
#include "base/text.h"
#include "network/zkWininetDown.h"
#include "tests/fakes/fake_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {

using Lines = std::vector<std::u16string>;

class DownloadFixture : public ::testing::Test {
protected:
    fakes::FakePlatform fake;
    fakes::FakeInternet &net = fake.internet;
    fakes::FakeFiles &files = fake.files;
    platform::Platform platform = fake.bundle();
    zkWininetDown wd{platform};
    const std::u16string target = u"/home/user/cache/song.mp3";

    void SetUp() override {
        wd.URL = u"http://host/song";
        wd.FileName = target;
        files.addFolder(u"/home/user/cache");
        wd.Status = [this](std::int32_t code) { net.log.push_back(u"Status " + decimal(code)); };
        wd.Error = [this](std::int32_t code) { net.log.push_back(u"Error " + decimal(code)); };
        wd.DownloadEnd = [this](bool success) {
            net.log.push_back(success ? u"DownloadEnd true" : u"DownloadEnd false");
        };
        wd.Progress = [this](double total, double received, double speed) {
            net.log.push_back(u"Progress " + format0_00(total) + u" " + format0_00(received) +
                              u" " + format0_00(speed));
        };
        fake.windows.onPump = [this] { net.log.emplace_back(u"pump"); };
        files.onCall = [this](const std::string &operation) {
            net.log.push_back(u"file " + fromAscii(operation));
        };
    }

    static std::string lines(std::initializer_list<std::string> each) {
        std::string block;
        for (const std::string &line : each)
            block += line + '\0';
        return block;
    }
    void respondWith(std::initializer_list<std::string> header, std::string body = "body") {
        net.respond({lines(header), std::move(body), std::nullopt});
    }

    // The log behind the first line that begins so, that line included.
    Lines logFrom(std::u16string_view beginning) const {
        auto from = net.log.begin();
        while (from != net.log.end() && !startsWith(*from, beginning))
            ++from;
        return {from, net.log.end()};
    }
    Lines events() const {
        Lines result;
        for (const std::u16string &line : net.log)
            for (const std::u16string_view kind :
                 {u"Status", u"Error", u"DownloadEnd", u"Progress"})
                if (startsWith(line, kind))
                    result.push_back(line);
        return result;
    }
    int count(std::u16string_view beginning) const {
        int result = 0;
        for (const std::u16string &line : net.log)
            result += startsWith(line, beginning);
        return result;
    }
};

// What `bStop` does, for the handles 1 to 3 of a first request.
inline const Lines stopLines = {u"InternetCloseHandle 3", u"InternetCloseHandle 2",
                                u"InternetCloseHandle 1", u"DeleteUrlCacheEntryA http://host/song"};

// Lines without braces, which macros stumble over.
template <typename... Texts> Lines these(const Texts &...texts) {
    return {std::u16string(texts)...};
}

inline Lines operator+(Lines a, const Lines &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace velmora
