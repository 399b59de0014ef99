#include "platform/backends/sound/device/tag_struct.h"

#include <algorithm>

namespace velmora::platform::sound {

void TagWriter::raw(std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        message_.push_back(static_cast<std::uint8_t>(value >> shift));
}

void TagWriter::number(std::uint32_t value) {
    message_.push_back('L');
    raw(value);
}

void TagWriter::bytes(std::span<const std::uint8_t> value) {
    message_.push_back('x');
    raw(static_cast<std::uint32_t>(value.size()));
    message_.insert(message_.end(), value.begin(), value.end());
}

void TagWriter::text(const std::string &value) {
    message_.push_back('t');
    message_.insert(message_.end(), value.begin(), value.end());
    message_.push_back(0);
}

void TagWriter::properties(const std::map<std::string, std::string> &values) {
    message_.push_back('P');
    for (const auto &[name, value] : values) {
        text(name);
        // A value is a string with its final zero.
        std::vector<std::uint8_t> data(value.begin(), value.end());
        data.push_back(0);
        number(static_cast<std::uint32_t>(data.size()));
        bytes(data);
    }
    message_.push_back('N');
}

bool TagReader::take(std::uint8_t tag) {
    const auto found = raw(1);
    if (found.empty() || found[0] != tag)
        good_ = false;
    return good_;
}

std::span<const std::uint8_t> TagReader::raw(std::size_t count) {
    if (!good_ || count > rest_.size()) {
        good_ = false;
        return {};
    }
    const auto value = rest_.first(count);
    rest_ = rest_.subspan(count);
    return value;
}

std::uint32_t TagReader::rawNumber() {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : raw(4))
        value = value << 8 | byte;
    return value;
}

std::uint32_t TagReader::number() { return take('L') ? rawNumber() : 0; }

std::string TagReader::text() {
    if (good_ && !rest_.empty() && rest_[0] == 'N') {
        raw(1);
        return {};
    }
    if (!take('t'))
        return {};
    const auto end = std::find(rest_.begin(), rest_.end(), std::uint8_t{0});
    if (end == rest_.end()) {
        good_ = false;
        return {};
    }
    std::string value(rest_.begin(), end);
    raw(value.size() + 1);
    return value;
}

bool TagReader::flag() {
    const auto found = raw(1);
    if (found.empty() || (found[0] != '0' && found[0] != '1')) {
        good_ = false;
        return false;
    }
    return found[0] == '1';
}

std::uint64_t TagReader::microseconds() {
    if (!take('U'))
        return 0;
    const std::uint64_t high = rawNumber();
    return high << 32 | rawNumber();
}

int TagReader::sampleSpecChannels() {
    if (!take('a'))
        return 0;
    const auto shape = raw(6); // format, channels, rate
    return shape.empty() ? 0 : shape[1];
}

void TagReader::channelMap() {
    if (take('m')) {
        const auto count = raw(1);
        raw(count.empty() ? 0 : count[0]);
    }
}

void TagReader::channelVolumes() {
    if (take('v')) {
        const auto count = raw(1);
        raw(count.empty() ? 0 : std::size_t{4} * count[0]);
    }
}

std::map<std::string, std::string> TagReader::properties() {
    std::map<std::string, std::string> values;
    if (!take('P'))
        return values;
    while (good_ && !rest_.empty() && rest_[0] != 'N') {
        const std::string name = text();
        number(); // the size, which the bytes repeat
        if (!take('x'))
            break;
        const auto data = raw(rawNumber());
        const auto end = std::find(data.begin(), data.end(), std::uint8_t{0});
        values[name] = std::string(data.begin(), end);
    }
    take('N');
    return values;
}

} // namespace velmora::platform::sound
