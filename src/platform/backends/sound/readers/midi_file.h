#pragma once

// Standard MIDI files: their events in the order and at the time they sound.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace velmora::platform::sound {

struct MidiEvent {
    double seconds = 0;      // from the beginning
    std::uint8_t status = 0; // 0x80 to 0xEF with the channel, or 0xF0 for an exclusive message
    std::uint8_t first = 0;  // data bytes, 0 to 127
    std::uint8_t second = 0;
    std::span<const std::uint8_t> exclusive; // the message without 0xF0 and 0xF7
};

// A whole file in memory. Formats 0, 1 and 2 (whose tracks are played together), divisions in
// ticks to the quarter or to the SMPTE frame. A damaged or cut track ends where it cannot be read
// further; the rest of the file plays.
class MidiFile {
public:
    static constexpr std::size_t maxBytes = std::size_t{16} << 20;

    // No value: no MIDI file, or nothing in it takes any time.
    static std::optional<MidiFile> parse(std::vector<std::uint8_t> bytes);

    // The time of the last event, the ends of the tracks among them.
    double seconds() const { return seconds_; }

    // The events, merged from the tracks in the order of their ticks (and of the tracks within a
    // tick). Tempo changes are already in the times.
    class Events {
    public:
        explicit Events(const MidiFile &file);
        // The next event of a channel or exclusive message; no value at the end.
        std::optional<MidiEvent> next();
        // The time reached: of the last event read, of whatever kind.
        double seconds() const { return seconds_; }

    private:
        struct Track {
            std::span<const std::uint8_t> bytes;
            std::size_t at = 0;
            std::uint64_t tick = 0; // of the event that comes next
            std::uint8_t running = 0;
        };
        // Order of the heap: the earliest tick first, then the first track.
        struct Later {
            const std::vector<Track> *tracks;
            bool operator()(std::size_t a, std::size_t b) const;
        };

        bool readDelta(Track &track);
        bool readEvent(Track &track, MidiEvent &event, bool &wanted);
        bool readMeta(Track &track);
        void moveTo(std::uint64_t tick);

        std::vector<Track> tracks_;
        std::vector<std::size_t> heap_;
        std::uint64_t tick_ = 0;
        double seconds_ = 0;
        double secondsPerTick_ = 0;
        double secondsPerTempoUnit_; // a tick at one microsecond to the quarter; 0: SMPTE
    };

private:
    std::vector<std::uint8_t> bytes_;
    struct Range {
        std::size_t start;
        std::size_t size;
    };
    std::vector<Range> tracks_;
    std::uint16_t division_ = 0;
    double seconds_ = 0;
};

} // namespace velmora::platform::sound
