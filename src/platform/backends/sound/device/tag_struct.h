#pragma once

// The typed values that the sound server's protocol packs its messages from.

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace velmora::platform::sound {

class TagWriter {
public:
    void number(std::uint32_t value);
    void bytes(std::span<const std::uint8_t> value);
    void properties(const std::map<std::string, std::string> &values);
    const std::vector<std::uint8_t> &message() const { return message_; }

private:
    void raw(std::uint32_t value);
    void text(const std::string &value);
    std::vector<std::uint8_t> message_;
};

// Reads in the order of writing. After a value of another type or a cut message good() is false and
// every further value is empty.
class TagReader {
public:
    explicit TagReader(std::span<const std::uint8_t> message) : rest_(message) {}

    bool good() const { return good_; }
    bool atEnd() const { return rest_.empty(); }

    std::uint32_t number();
    std::string text(); // a null text is empty
    bool flag();
    std::uint64_t microseconds();
    int sampleSpecChannels();
    void channelMap();
    void channelVolumes();
    std::map<std::string, std::string> properties();

private:
    bool take(std::uint8_t tag);
    std::span<const std::uint8_t> raw(std::size_t count);
    std::uint32_t rawNumber();

    std::span<const std::uint8_t> rest_;
    bool good_ = true;
};

} // namespace velmora::platform::sound
