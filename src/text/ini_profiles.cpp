#include "text/ini_profiles.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "base/utf8.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>
#include <utility>

namespace velmora::platform {

namespace {

// At most `size` - 1 units, never half a pair.
std::u16string fitting(std::u16string_view text, std::size_t size) {
    std::size_t length = std::min(text.size(), size == 0 ? 0 : size - 1);
    if (length > 0 && length < text.size() && isHighSurrogate(text[length - 1]) &&
        isLowSurrogate(text[length]))
        --length;
    return std::u16string(text.substr(0, length));
}

bool isOneLine(std::u16string_view text) {
    return text.find_first_of(std::u16string_view(u"\r\n\0", 3)) == std::u16string_view::npos;
}

} // namespace

std::optional<std::string> IniProfiles::bytesOf(std::u16string_view file) {
    std::optional<std::string> bytes;
    passOver([&] {
        const std::int64_t length = files_.FileLen(file);
        if (length <= longestFile)
            bytes = files_.readBytes(file, 0, static_cast<std::size_t>(length));
    });
    return bytes;
}

const IniText &IniProfiles::parsed(const std::string &bytes) {
    if (bytes == lastBytes_)
        return last_;
    std::vector<std::string> lines;
    for (const FileLine &line : linesOf(bytes))
        lines.push_back(bytes.substr(line.begin, line.end - line.begin));
    last_ = IniText(ansi_.decodeTogether(lines, false));
    lastBytes_ = bytes;
    return last_;
}

std::u16string IniProfiles::GetPrivateProfileStringA(std::u16string_view section,
                                                     std::u16string_view key,
                                                     std::u16string_view fallback, std::size_t size,
                                                     std::u16string_view file) {
    if (isHeld(file)) {
        const IniText::Place *place = held_->text.find(section, key);
        return fitting(place != nullptr ? place->value : fallback, size);
    }
    const std::optional<std::string> bytes = bytesOf(file);
    const IniText::Place *place = bytes ? parsed(*bytes).find(section, key) : nullptr;
    return fitting(place != nullptr ? place->value : fallback, size);
}

std::vector<std::u16string> IniProfiles::GetPrivateProfileKeysA(std::u16string_view section,
                                                                std::u16string_view file) {
    if (isHeld(file))
        return held_->text.keys(section);
    const std::optional<std::string> bytes = bytesOf(file);
    return bytes ? parsed(*bytes).keys(section) : std::vector<std::u16string>();
}

bool IniProfiles::WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                             std::optional<std::u16string_view> value,
                                             std::u16string_view file) {
    if (!isOneLine(section) || !isOneLine(key) || (value && !isOneLine(*value)))
        return false;
    if (isHeld(file) && !value)
        return removeHeld(section, key);
    if (isHeld(file)) { // a value goes to the disk at once, behind what was removed
        release();
        const bool isWritten = WritePrivateProfileStringA(section, key, value, file);
        hold(file);
        return isWritten;
    }
    const std::optional<std::string> old = bytesOf(file);
    if (!old && !files_.Dir(file).empty()) // it is there and not to be read
        return false;
    if (!old && !value)
        return true;
    std::string bytes = old.value_or("");
    const IniText &text = parsed(bytes);
    const std::vector<FileLine> lines = linesOf(bytes);
    const IniText::Place *place = text.find(section, key);
    const std::string entry = value ? ansi_.encode(key) + "=" + ansi_.encode(*value) + "\r\n" : "";
    if (place != nullptr) {
        const FileLine &line = lines[place->line];
        bytes.replace(line.begin, line.next - line.begin, entry);
    } else if (!value) {
        return true;
    } else {
        const std::size_t end = text.endOf(section);
        std::size_t at = end == 0 ? bytes.size() : lines[end - 1].next;
        std::string added = end == 0 ? "[" + ansi_.encode(section) + "]\r\n" + entry : entry;
        if (at > 0 && bytes[at - 1] != '\n' && bytes[at - 1] != '\r')
            added.insert(0, "\r\n");
        bytes.insert(at, added);
    }
    return passOver([&] { files_.writeWhole(file, bytes, false); });
}

// --- a file that is held ---

class IniProfiles::HoldOfFile : public Hold {
public:
    explicit HoldOfFile(IniProfiles &profiles) : profiles_(profiles) {}
    ~HoldOfFile() override { profiles_.release(); }

private:
    IniProfiles &profiles_;
};

std::unique_ptr<Profiles::Hold> IniProfiles::holdFile(std::u16string_view file) {
    release();
    hold(file);
    return std::make_unique<HoldOfFile>(*this);
}

// A file that cannot be read holds nothing to find or to remove.
void IniProfiles::hold(std::u16string_view file) {
    Held held{std::u16string(file), bytesOf(file).value_or(""), {}, {}, {}, false};
    parsed(held.bytes);
    held.text = std::exchange(last_, {}); // one copy is enough
    lastBytes_.clear();
    held.lines = linesOf(held.bytes);
    held.isRemoved.resize(held.lines.size());
    held_ = std::move(held);
}

bool IniProfiles::removeHeld(std::u16string_view section, std::u16string_view key) {
    const IniText::Place *place = held_->text.find(section, key);
    if (place == nullptr)
        return true;
    held_->isRemoved[place->line] = true;
    held_->isChanged = true;
    held_->text.remove(section, key);
    return true;
}

void IniProfiles::release() {
    if (!held_)
        return;
    const Held held = std::move(*held_);
    held_.reset();
    if (!held.isChanged)
        return;
    std::string bytes;
    for (std::size_t i = 0; i < held.lines.size(); ++i)
        if (!held.isRemoved[i])
            bytes.append(held.bytes, held.lines[i].begin, held.lines[i].next - held.lines[i].begin);
    passOver([&] { files_.writeWhole(held.file, bytes, false); });
}

// Without a piece of memory for each part: a transfer asks three times at every kilobyte.
std::u16string IniProfiles::StrFormatByteSizeA(std::int32_t size) {
    const auto bytes = static_cast<std::uint32_t>(size); // the platform counts without a sign
    char text[24];
    if (bytes < 1024) {
        char *const end = std::to_chars(text, std::end(text), bytes).ptr;
        return std::u16string(text, end) + u" bytes";
    }
    constexpr std::string_view units[] = {" KB", " MB", " GB"};
    std::uint64_t one = 1024;
    std::size_t unit = 0;
    // A thousand of one unit is the next one, so that three digits always do.
    for (; bytes >= 1000 * one && unit + 1 < std::size(units); ++unit)
        one *= 1024;
    const std::uint64_t hundredths = std::uint64_t{bytes} * 100 / one;
    char *end = std::to_chars(text, std::end(text), hundredths / 100).ptr;
    if (hundredths < 10'000) {
        *end++ = '.';
        *end++ = static_cast<char>('0' + hundredths / 10 % 10);
    }
    if (hundredths < 1000)
        *end++ = static_cast<char>('0' + hundredths % 10);
    end = std::copy(units[unit].begin(), units[unit].end(), end);
    return {text, end};
}

} // namespace velmora::platform
