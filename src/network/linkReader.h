#pragma once

// The links of an upper-cased page, taken from its text by fixed rules.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

namespace platform {
class WindowSystem;
}

inline constexpr std::u16string_view linkMarker = u"HREF";

// Reads links at growing positions, at a cost that is linear in the page whatever it holds.
class LinkReader {
public:
    // `page` must outlive the reader.
    explicit LinkReader(std::u16string_view page) noexcept : page_(page) {}

    // The link behind the marker at `position` (from 1; not below that of the call before): from
    // five units behind it (the word and "=") to the first quote or ">", within 300 units. A quote
    // at the very first unit belongs to the link. Nothing without an end in that range, and for a
    // link with "+", "#", a blank or "MAILTO" in it.
    std::optional<std::u16string_view> read(std::int32_t position);

private:
    // A place in the page that only moves on, behind the page when there is none any more.
    struct Finder {
        std::size_t at = 0;
        bool isKnown = false;
    };
    std::size_t nextOf(Finder &finder, std::u16string_view units, std::size_t from) const;
    std::size_t nextMailto(std::size_t from);

    std::u16string_view page_;
    Finder end_;
    Finder forbidden_;
    Finder mailto_;
};

// The beginning of relative links of the page at an address: up to and including its last "/".
// `address` itself gets "/" for "\", and a "/" at its end when it is a host alone. Handles pending
// events once.
std::u16string linkBase(platform::WindowSystem &windows, std::u16string &address);

// Without an opening quote, and absolute: a relative link (one without ":") goes behind `base`, in
// lower case unless it begins with a separator, which is taken off.
std::u16string normalLink(std::u16string_view link, std::u16string_view base);

} // namespace velmora
