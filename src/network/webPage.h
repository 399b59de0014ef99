#pragma once

// Pages and files fetched whole, and the search inside a page. Everything blocks for as long as the
// request takes; pending events are handled once ahead of it.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

namespace platform {
class Internet;
class WindowSystem;
struct Platform;
} // namespace platform

// The page at an address, read as GB2312, whatever its status; empty when the answer is not
// complete. Raises when the request cannot be sent.
std::u16string getWebPage(const platform::Platform &platform, std::u16string_view url);

std::u16string bytesToCharset(platform::Internet &internet, std::string_view bytes,
                              std::u16string_view charset);

// How often `find` occurs behind the first unit of the text: a match at the very first unit is
// never counted. Occurrences may overlap. `positions`, if given, becomes their places, counted from
// 1. Handles pending events once.
std::int32_t countText(platform::WindowSystem &windows, std::u16string_view text,
                       std::u16string_view find, std::vector<std::int32_t> *positions = nullptr);

// Fetches a lyric's file. True exactly when the system reported success; never raises. `mayFetch`
// is asked behind the pending events, right ahead of the fetch: nothing is fetched where it says no
// or raises. The texts must outlive those events.
bool downloadToLocal(const platform::Platform &platform, std::u16string_view url,
                     std::u16string_view file, const std::function<bool()> &mayFetch = {});

} // namespace velmora
