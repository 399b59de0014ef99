// A standard MIDI file, read event by event. Times never go back and stay within the length; data
// bytes are data bytes.

#include "platform/backends/sound/readers/midi_file.h"

#include <cstdlib>

using velmora::platform::sound::MidiFile;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const auto file = MidiFile::parse({data, data + size});
    if (!file)
        return 0;
    MidiFile::Events events(*file);
    double last = 0;
    std::size_t count = 0;
    while (const auto event = events.next()) {
        const bool good = event->seconds >= last && event->seconds <= file->seconds() &&
                          event->status >= 0x80 && event->first < 0x80 && event->second < 0x80;
        if (!good || ++count > size)
            std::abort();
        last = event->seconds;
    }
    if (!(file->seconds() > 0))
        std::abort();
    return 0;
}
