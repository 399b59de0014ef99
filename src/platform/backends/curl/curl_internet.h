#pragma once

// The network over libcurl (contract: platform/internet.h).

#include "platform/backends/linux/file_calls.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/internet.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velmora::platform {

// How long and how much a request may take. The defaults are the rules; tests shorten them.
struct InternetLimits {
    std::chrono::milliseconds connect{10'000};   // name look-up, connection and its encryption
    std::chrono::milliseconds stall{30'000};     // one header; a body that does not go on
    std::chrono::milliseconds header{40'000};    // all up to the last header, redirects included
    std::chrono::milliseconds read{5'000};       // of a body that is read piece by piece, for 1 KB
    std::chrono::milliseconds unread{1'000};     // for which nobody reads on: it is taken ahead
    std::chrono::milliseconds page{60'000};      // a whole page
    std::chrono::milliseconds unreached{60'000}; // for which a host is not tried again
    std::size_t pageBytes = std::size_t{16} << 20;
    std::size_t aheadBytes = std::size_t{64} << 20; // of a body that is taken ahead
    std::size_t downloadBytesPerSecond = 1024;      // less than this for `stall` is a stall
};

// A server whose key is known, which proves it in place of any authority.
struct PinnedServer {
    std::u16string address; // "https://name:port"; empty: there is none
    // "sha256//" and the key's digest in base64; more of them with ";" between. Any other text that
    // is not empty is no key's, so that the server is refused.
    std::u16string pin;
};

// Has `ready` called from the loop, nested ones included, while the descriptor can be read. The
// watch ends with what comes back.
using WatchReadable =
    std::function<std::function<void(bool writing)>(int descriptor, std::function<void()> ready)>;

// `hosts` answers the hosts that are configured ("http://name:port"), for the question whether the
// machine is online; it is asked each time, and so is `pinned`. `calls` write what is downloaded.
// Where a box stands over a transfer, `watch` has it go on: a server that waits for nobody would
// cut it short. `ansi` must outlive the result.
std::unique_ptr<Internet> makeInternet(const AnsiText &ansi,
                                       std::function<std::vector<std::u16string>()> hosts,
                                       const InternetLimits &limits = {}, FileCalls calls = {},
                                       std::function<PinnedServer()> pinned = {},
                                       WatchReadable watch = {});

} // namespace velmora::platform
