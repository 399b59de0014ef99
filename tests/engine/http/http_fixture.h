#pragma once

// The network as the program uses it.

#include "base/run_time_error.h"
#include "base/text.h"
#include "loopback_server.h"
#include "platform/backends/curl/curl_internet.h"
#include "platform/backends/linux/linux.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace velmora::testing {

using platform::InternetHandle;
using platform::InternetLimits;

// One request up to its answer, as the program's own transfers go about it.
struct Sent {
    InternetHandle session = 0;
    InternetHandle connection = 0;
    InternetHandle request = 0;
    bool answered = false;
};

class HttpTest : public ::testing::Test {
protected:
    platform::WatchReadable watch_; // set before the first use of `internet`

    platform::Internet &internet() {
        if (internet_ == nullptr)
            internet_ = platform::makeInternet(
                *ansi_, [] { return std::vector<std::u16string>(); }, limits_, {},
                [this] { return pinned_; }, watch_);
        return *internet_;
    }

    // Before the first use of `internet`.
    void limit(const InternetLimits &limits) { limits_ = limits; }
    void pin(const std::string &address, const std::string &pin) {
        pinned_ = {fromAscii(address), fromAscii(pin)};
    }
    void usePage(std::u16string page) {
        ansi_ = platform::makeAnsiText([page = std::move(page)] { return page; });
    }

    Sent open(int port, std::u16string_view object, std::u16string_view verb = u"GET",
              std::u16string_view host = u"127.0.0.1") {
        Sent sent;
        sent.session = internet().InternetOpenA(u"Agent 007");
        sent.connection = internet().InternetConnectA(sent.session, host, port, std::nullopt,
                                                      u"HTTP/1.0", platform::INTERNET_SERVICE_HTTP);
        sent.request = internet().HttpOpenRequestA(sent.connection, verb, object, u"HTTP/1.0",
                                                   platform::INTERNET_FLAG_RELOAD);
        return sent;
    }

    void addHeaders(const Sent &sent, std::u16string_view headers) {
        internet().HttpAddRequestHeadersA(sent.request, headers,
                                          platform::HTTP_ADDREQ_FLAG_ADD |
                                              platform::HTTP_ADDREQ_FLAG_REPLACE);
    }

    Sent send(int port, std::u16string_view object = u"/",
              std::u16string_view host = u"127.0.0.1") {
        Sent sent = open(port, object, u"GET", host);
        addHeaders(sent, u"");
        sent.answered = internet().HttpSendRequestA(sent.request, u"", 0);
        return sent;
    }

    std::optional<std::string> headerOf(const Sent &sent, std::size_t capacity = 1024) {
        return internet().HttpQueryInfoA(sent.request, platform::HTTP_QUERY_RAW_HEADERS, capacity);
    }

    struct Body {
        std::string bytes;
        bool cut = false; // the last read said false
    };
    Body bodyOf(const Sent &sent, std::size_t packet = 1024) {
        Body body;
        std::string bytes;
        while (!(body.cut = !internet().InternetReadFile(sent.request, packet, bytes)) &&
               !bytes.empty())
            body.bytes += bytes;
        return body;
    }

    std::optional<std::string> page(std::u16string_view url) { return internet().XmlHttpGet(url); }

private:
    platform::PinnedServer pinned_;
    InternetLimits limits_;
    std::unique_ptr<platform::AnsiText> ansi_ =
        platform::makeAnsiText([] { return std::u16string(); });
    std::unique_ptr<platform::Internet> internet_;
};

// Always the same answer.
inline LoopbackServer::Script always(std::string answer) {
    return [answer = std::move(answer)](Talk &talk, const std::string &) { talk.send(answer); };
}

inline std::string withNuls(std::string_view text) {
    std::string result(text);
    for (char &byte : result)
        if (byte == '|')
            byte = '\0';
    return result;
}

} // namespace velmora::testing
