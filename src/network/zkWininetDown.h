#pragma once

// The HTTP client that reports its progress. One call drives a whole request on the caller's
// thread; pending events are handled once behind every packet, which is when an owner can stop it.
//
// Plain "http" only. One request at a time; the object is used again by setting `URL` and
// `FileName`. The object must live until the call returns. What an event's handler raises ends that
// handler alone.

#include "platform/contracts/internet.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace velmora {

namespace platform {
struct Platform;
}

class zkWininetDown {
public:
    explicit zkWininetDown(const platform::Platform &platform);
    zkWininetDown(const zkWininetDown &) = delete;
    zkWininetDown &operator=(const zkWininetDown &) = delete;

    // --- properties ---
    std::u16string_view Version() const noexcept { return u"zkPlayer WininetDown 1.0.0"; }
    std::u16string Method = u"GET";
    std::u16string URL;
    std::u16string Referer; // sent when not empty
    std::u16string UserAgent = u"Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)";
    std::u16string Cookie;              // set for `URL` ahead of sending, when not empty
    std::u16string Charset = u"gb2312"; // of text packets
    std::int32_t Pakesize = 1024;       // bytes asked for in each read
    // Whether a file that counts as complete is fetched again. It has nothing to do with resuming:
    // no partial file is ever continued.
    bool ReDown = true;
    std::u16string FileName; // target of `DownloadToFile`; its folders are made, and spelt anew
    std::u16string PostData;
    bool IsUpload = false;    // stored, and read by nobody here
    std::u16string SplitCode; // the same

    // --- events, raised inside the calls ---
    // Total (1 where it is not known), received, bytes a second.
    std::function<void(double total, double received, double speed)> Progress;
    // A transfer has ended; not raised when `Download` itself failed.
    std::function<void(bool success)> DownloadEnd;
    // 1 to 4 the stages of `Download`, 5 each packet ahead of its `Progress`, 6 complete.
    std::function<void(std::int32_t code)> Status;
    // 1 no session, 2 no connection, 3 no request, 4 stopped, 5 complete already, 6 no folder, 7
    // the target cannot be opened, 8 nothing to fetch, 9 not what was asked for.
    std::function<void(std::int32_t code)> Error;

    // --- operations ---
    // Opens session, connection and request, sends, and reads the response's header. The answer's
    // status is never looked at. True although the request was refused: that shows in the header.
    bool Download();
    // Ends a transfer and lets its handles go; how an owner cancels.
    void bStop();
    // One of Content-Length, Content-Type, Date, Last-Modified, Server (in any case) out of the
    // header, searched as spelt here and anywhere in it; a header that is absent reads from a fixed
    // place of the block all the same. The whole block for an empty name. "0" for any other name,
    // without a header, and when nothing runs.
    std::u16string GetHeader(std::u16string_view name);
    // 1 where it is not known; 0 without any header.
    std::int32_t FileSize();
    std::u16string FileType();
    // 256 units, filled up with blanks; empty when there is no such cookie.
    std::u16string GetCookie(std::u16string_view name);
    // The body as text, each packet decoded alone; a stopped transfer gives what came.
    std::u16string DownLoadToText();
    // The body into `FileName`; `kind` is "music". A cut body counts as success, and a stopped one
    // leaves its part.
    bool DownloadToFile(std::u16string_view kind);

private:
    void splitUrl();
    bool openHandles();
    std::u16string extraHeaders() const;
    void queryHeader();
    std::u16string bytesToText(std::string_view bytes, std::u16string_view charset);
    bool readPacket(std::string &packet);
    void packetDone(double total, std::size_t bytes);
    void begin();
    bool fail(std::int32_t code);
    bool targetIsRefused(std::int32_t total);
    bool clearTarget();
    bool receiveFile(std::int32_t total);

    void raiseStatus(std::int32_t code);
    void raiseError(std::int32_t code);
    void raiseEnd(bool success);

    const platform::Platform &platform_;
    std::u16string HostName_;
    std::int32_t Port_ = 80;
    std::u16string UrlPath_;
    bool IsRunning_ = false;
    // Never set back to 0: closing one twice is harmless.
    platform::InternetHandle hOpen_ = 0;
    platform::InternetHandle hConnect_ = 0;
    platform::InternetHandle hRequest_ = 0;
    std::u16string HeaderBlock_; // lines that each end in NUL
    bool HeaderOk_ = false;
    double StartTime_ = 0;   // seconds since midnight
    double ElapsedTime_ = 0; // below 0 in a transfer that spans midnight
    double Speed_ = 0;       // kept while no time has passed
    double received_ = 0;    // bytes of this transfer
};

} // namespace velmora
