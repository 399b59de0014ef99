#pragma once

// The ANSI conversion over UTF-8 and one legacy page (contract: platform/ansi.h).

#include "platform/contracts/ansi.h"
#include "text/legacy_page.h"

#include <functional>
#include <optional>
#include <string>

namespace velmora::platform {

class AnsiConversion : public AnsiText {
public:
    // `activePage` answers the text of the page that is set: the number of one of the known pages,
    // or anything else for none. It is asked once, when a conversion first meets a byte or unit
    // above 127, so that making the object costs nothing. `usualPage` is the page to read with
    // where none is set.
    explicit AnsiConversion(std::function<std::u16string()> activePage, int usualPage = 936);
    ~AnsiConversion() override;

    std::string encode(std::u16string_view text) const override;
    void appendTo(std::string &bytes, std::u16string_view text) const override;
    std::size_t byteCount(std::u16string_view text) const override;
    std::u16string decode(std::string_view bytes) const override;
    std::u16string decodePath(std::string_view bytes) const override;
    std::vector<std::u16string> decodeTogether(const std::vector<std::string> &texts,
                                               bool fixedLength) const override;

private:
    // The page behind UTF-8; none where only UTF-8 is read.
    const LegacyPage *legacy() const;
    // The same, where it is set: the page that is written.
    const LegacyPage *written() const;
    void askForPage() const;

    std::function<std::u16string()> activePage_;
    int usualPage_;
    mutable bool asked_ = false;
    mutable bool isSet_ = false;
    mutable std::optional<LegacyPage> legacy_;
};

} // namespace velmora::platform
