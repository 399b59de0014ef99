#pragma once

// The ANSI conversion over UTF-8 and one legacy page (contract: platform/ansi.h).

#include "platform/ansi.h"
#include "platform/linux/text/legacy_page.h"

#include <functional>
#include <optional>
#include <string>

namespace velmora::platform {

class AnsiConversion : public AnsiText {
public:
    // `activePage` answers the text of the override: the number of one of the known pages, or
    // anything else for none. It is asked once, when a conversion first meets a byte or unit above
    // 127, so that making the object costs nothing.
    explicit AnsiConversion(std::function<std::u16string()> activePage);
    ~AnsiConversion() override;

    std::string encode(std::u16string_view text) const override;
    void appendTo(std::string &bytes, std::u16string_view text) const override;
    std::size_t byteCount(std::u16string_view text) const override;
    std::u16string decode(std::string_view bytes) const override;
    std::u16string decodePath(std::string_view bytes) const override;
    std::vector<std::u16string> decodeTogether(const std::vector<std::string> &texts,
                                               bool fixedLength) const override;

private:
    enum class Mode { Utf8ThenLegacy, Utf8Alone, LegacyAlone };

    Mode mode() const;
    std::u16string decodeLegacyPath(std::string_view bytes) const;

    std::function<std::u16string()> activePage_;
    mutable std::optional<Mode> mode_;
    mutable std::optional<LegacyPage> legacy_;
};

} // namespace velmora::platform
