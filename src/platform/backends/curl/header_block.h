#pragma once

// What a server says in front of a body, taken line by line as it arrives.

#include <cstddef>
#include <string>
#include <string_view>

namespace velmora::platform::http {

// Keeps the status line and the fields of the last response: a new status line drops what an
// interim or redirecting response has left.
class HeaderBlock {
public:
    // All that a server may send in front of one body, interim responses and redirects included.
    static constexpr std::size_t most = std::size_t{256} << 10;

    // One line with its end; an empty one ends a header. False when it is too much: the transfer
    // must end. What comes behind the final header (trailers) is passed over.
    bool take(std::string_view line);

    // The final response's header is there. A response that only leads elsewhere (300 to 399 with a
    // place) and an interim one (100 to 199) are not final.
    bool complete() const noexcept { return complete_; }
    // The last header that came leads elsewhere.
    bool leadsElsewhere() const noexcept { return leadsElsewhere_; }
    // 0 while there is none.
    int status() const noexcept { return status_; }

    // The status line and the fields as received, in their case and order, each ended by NUL.
    const std::string &bytes() const noexcept { return bytes_; }

private:
    void begin(std::string_view statusLine);
    void end();

    std::string bytes_;
    std::size_t taken_ = 0;
    int status_ = 0;
    bool hasPlace_ = false;
    bool leadsElsewhere_ = false;
    bool complete_ = false;
};

} // namespace velmora::platform::http
