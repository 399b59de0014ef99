#include "tests/fakes/fake_profiles.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "tests/fakes/fake_files.h"

namespace velmora::fakes {

namespace {

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::u16string_view unquoted(std::u16string_view text) {
    const bool quoted = text.size() > 1 && text.front() == text.back() &&
                        (text.front() == u'"' || text.front() == u'\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::u16string_view keyOf(std::u16string_view line) {
    return trimmed(line.substr(0, line.find(u'=')));
}

} // namespace

FakeProfiles::Place FakeProfiles::find(std::u16string_view section, std::u16string_view key,
                                       std::u16string_view file) {
    Place place;
    if (!files_.hasFile(file))
        return place;
    std::vector<std::string> bytes;
    const auto reader = files_.openInput(file);
    while (!reader->endOfFile())
        bytes.push_back(reader->readLine());
    place.lines = ansi_.decodeTogether(bytes, false);
    bool inside = false;
    bool passed = false; // the first such section counts, no other
    for (std::size_t i = 0; i < place.lines.size(); ++i) {
        const std::u16string_view line = trimmed(place.lines[i]);
        if (!line.empty() && line.front() == u'[') {
            passed |= inside;
            inside = !passed &&
                     equalsIgnoringCase(trimmed(line.substr(1, line.find(u']') - 1)), section);
        } else if (inside && !place.line && startsWith(line, u";") == false &&
                   contains(line, u"=") && equalsIgnoringCase(keyOf(line), key)) {
            place.line = i;
        }
        if (inside)
            place.sectionEnd = i + 1;
    }
    return place;
}

std::u16string FakeProfiles::GetPrivateProfileStringA(std::u16string_view section,
                                                      std::u16string_view key,
                                                      std::u16string_view fallback,
                                                      std::size_t size, std::u16string_view file) {
    log.push_back(u"read " + std::u16string(section) + u" " + std::u16string(key) + u" " +
                  std::u16string(fallback) + u" " + decimal(static_cast<std::int64_t>(size)) +
                  u" " + std::u16string(file));
    const Place place = find(section, key, file);
    std::u16string_view value = fallback;
    if (place.line) {
        const std::u16string_view line = place.lines[*place.line];
        value = unquoted(trimmed(line.substr(line.find(u'=') + 1)));
    }
    return std::u16string(leftPart(value, static_cast<std::ptrdiff_t>(size) - 1));
}

std::vector<std::u16string> FakeProfiles::GetPrivateProfileKeysA(std::u16string_view section,
                                                                 std::u16string_view file) {
    log.push_back(u"keys " + std::u16string(section) + u" " + std::u16string(file));
    const Place place = find(section, u"", file);
    std::vector<std::u16string> names;
    // The section's lines end at its end and begin behind its head.
    for (std::size_t i = place.sectionEnd; i > 0; --i) {
        const std::u16string_view line = trimmed(place.lines[i - 1]);
        if (startsWith(line, u"["))
            break;
        if (!startsWith(line, u";") && contains(line, u"="))
            names.emplace_back(keyOf(line));
    }
    return names;
}

bool FakeProfiles::WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                              std::optional<std::u16string_view> value,
                                              std::u16string_view file) {
    log.push_back(u"write " + std::u16string(section) + u" " + std::u16string(key) + u" " +
                  std::u16string(value.value_or(u"-")) + u" " + std::u16string(file));
    if (writesFail)
        return false;
    Place place = find(section, key, file);
    if (!value && !place.line)
        return true;
    const auto at = [&](std::size_t i) {
        return place.lines.begin() + static_cast<std::ptrdiff_t>(i);
    };
    const std::u16string line =
        value ? std::u16string(key) + u"=" + std::u16string(*value) : std::u16string();
    if (!value) {
        place.lines.erase(at(*place.line));
    } else if (place.line) {
        place.lines[*place.line] = line;
    } else if (place.sectionEnd != 0) {
        place.lines.insert(at(place.sectionEnd), line);
    } else {
        place.lines.push_back(u"[" + std::u16string(section) + u"]");
        place.lines.push_back(line);
    }
    std::u16string text;
    for (const std::u16string &one : place.lines)
        text.append(one).append(crLf);
    return passOver([&] { files_.writeWhole(file, ansi_.encode(text), false); });
}

std::unique_ptr<platform::Profiles::Hold> FakeProfiles::holdFile(std::u16string_view file) {
    class Noted : public Hold {
    public:
        Noted(std::vector<std::u16string> &log, std::u16string_view file) : log_(log), file_(file) {
            log_.push_back(u"hold " + file_);
        }
        ~Noted() override { log_.push_back(u"release " + file_); }

    private:
        std::vector<std::u16string> &log_;
        std::u16string file_;
    };
    return std::make_unique<Noted>(log, file);
}

std::u16string FakeProfiles::StrFormatByteSizeA(std::int32_t size) {
    log.push_back(u"size " + decimal(size));
    if (size < 1024)
        return decimal(size) + u" bytes";
    // Three significant digits, cut.
    std::int64_t hundredths = std::int64_t{size} * 100 / 1024;
    std::size_t unit = 0;
    for (; hundredths >= 102'400; hundredths /= 1024)
        ++unit;
    static constexpr const char16_t *units[] = {u" KB", u" MB", u" GB"};
    const std::int64_t whole = hundredths / 100;
    const std::int64_t rest = hundredths % 100;
    std::u16string text = decimal(whole);
    if (whole < 10)
        text += u"." + format00(rest);
    else if (whole < 100)
        text += u"." + decimal(rest / 10);
    return text + units[unit];
}

} // namespace velmora::fakes
