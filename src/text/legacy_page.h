#pragma once

// One legacy code page, both ways, over the C library's converter, which is loaded at first use.

#include <optional>
#include <string>
#include <string_view>

namespace velmora::platform {

class LegacyPage {
public:
    // 936, 932, 949, 950 or 1252. Page 936 is read as its superset GB18030.
    explicit LegacyPage(int number) noexcept : number_(number) {}
    ~LegacyPage();
    LegacyPage(const LegacyPage &) = delete;
    LegacyPage &operator=(const LegacyPage &) = delete;

    static bool isKnown(int number) noexcept;
    int number() const noexcept { return number_; }

    // A bad lead byte gives U+FFFD and an ASCII byte behind it stays; a well-formed pair without a
    // character gives one U+FFFD. `dropCutEnd`: an incomplete character at the end is dropped.
    // Without the system's converter every byte above 127 gives U+FFFD.
    std::u16string decode(std::string_view bytes, bool dropCutEnd = false) const;

    // Absent when something in the bytes decodes to nothing.
    std::optional<std::u16string> decodeStrictly(std::string_view bytes) const;

    // Absent when the page cannot hold all of the text so that it is read back as itself.
    std::optional<std::string> encode(std::u16string_view text) const;

private:
    using Converter = void *;

    bool decodeInto(std::u16string &result, std::string_view bytes, bool dropCutEnd,
                    bool stopAtInvalid) const;
    std::size_t invalidLength(std::string_view bytes) const noexcept;

    int number_;
    mutable Converter reader_ = nullptr;
    mutable Converter writer_ = nullptr;
};

} // namespace velmora::platform
