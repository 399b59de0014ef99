// Command texts: each line of the input, read as bytes or as UTF-16 units, goes to the parser and
// to an interpreter whose device accepts everything.

#include "platform/backends/media/mci_command.h"
#include "platform/backends/media/mci_interpreter.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace velmora::platform;
using namespace velmora::platform::media;

class WillingDevice : public Device {
public:
    bool play() override { return true; }
    bool pause() override { return true; }
    bool seek(std::int32_t ms) override { return require(ms >= 0 && ms <= length); }
    bool setVolume(std::int32_t level) override { return require(level >= 0 && level <= 1000); }
    bool setChannel(Channel) override { return true; }
    bool putWindow(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override { return true; }
    Mode mode() override { return Mode::Playing; }
    std::int32_t positionMs() override { return length; }
    std::int32_t lengthMs() override { return length; }
    std::uintptr_t windowHandle() override { return UINTPTR_MAX / 2; }

private:
    static constexpr std::int32_t length = 123456;
    static bool require(bool holds) {
        if (!holds)
            std::abort();
        return true;
    }
};

class WillingOpener : public DeviceOpener {
public:
    std::unique_ptr<Device> open(const OpenRequest &request) override {
        if (request.path.empty() || request.path.find('\0') != std::string::npos)
            std::abort();
        return std::make_unique<WillingDevice>();
    }
};

void send(MediaControl &media, std::u16string_view text, int size) {
    const MciAnswer answer = media.mciSendStringA(text, size);
    const bool fits = answer.text.empty() || static_cast<int>(answer.text.size()) < size;
    if (!fits || (answer.error != 0 && !answer.text.empty()))
        std::abort();
}

void sendLines(const std::u16string &text) {
    MciInterpreter media(std::make_unique<WillingOpener>(), nullptr);
    // Something is open, so that every command gets as far as it can.
    send(media, u"open /proc/self/exe type Waveaudio alias A", 0);
    int size = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find(u'\n', start), text.size());
        const std::u16string_view line = std::u16string_view(text).substr(start, end - start);
        send(media, line, size++ % 12);
        start = end + 1;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    sendLines(std::u16string(data, data + size));
    std::u16string units(size / 2, u'\0');
    if (!units.empty())
        std::memcpy(units.data(), data, units.size() * 2);
    sendLines(units);
    return 0;
}
