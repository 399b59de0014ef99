#pragma once

// Writes standard MIDI files byte by byte.

#include "sound_testing.h"

#include <initializer_list>

namespace velmora::tests {

inline void append(Bytes &to, std::initializer_list<int> bytes) {
    for (const int byte : bytes)
        to.push_back(static_cast<std::uint8_t>(byte));
}

inline void append(Bytes &to, const Bytes &bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

inline void appendBig(Bytes &to, std::uint32_t value, int count) {
    for (int shift = (count - 1) * 8; shift >= 0; shift -= 8)
        to.push_back(static_cast<std::uint8_t>(value >> shift));
}

// A track, event after event; each with the ticks since the one before.
class MidiTrack {
public:
    MidiTrack &event(std::uint32_t delta, std::initializer_list<int> bytes) {
        length(delta);
        append(bytes_, bytes);
        return *this;
    }
    MidiTrack &tempo(std::uint32_t delta, std::uint32_t microsecondsToQuarter) {
        length(delta);
        append(bytes_, {0xFF, 0x51, 3});
        appendBig(bytes_, microsecondsToQuarter, 3);
        return *this;
    }
    MidiTrack &end(std::uint32_t delta) { return event(delta, {0xFF, 0x2F, 0}); }
    const Bytes &bytes() const { return bytes_; }

private:
    void length(std::uint32_t value) {
        for (int shift = 21; shift > 0; shift -= 7)
            if (value >> shift != 0)
                bytes_.push_back(static_cast<std::uint8_t>(0x80 | (value >> shift & 0x7F)));
        bytes_.push_back(static_cast<std::uint8_t>(value & 0x7F));
    }
    Bytes bytes_;
};

inline Bytes midiFile(int format, int division, const std::vector<MidiTrack> &tracks) {
    Bytes file = {'M', 'T', 'h', 'd', 0, 0, 0, 6};
    appendBig(file, static_cast<std::uint32_t>(format), 2);
    appendBig(file, static_cast<std::uint32_t>(tracks.size()), 2);
    appendBig(file, static_cast<std::uint32_t>(division) & 0xFFFF, 2);
    for (const MidiTrack &track : tracks) {
        append(file, {'M', 'T', 'r', 'k'});
        appendBig(file, static_cast<std::uint32_t>(track.bytes().size()), 4);
        append(file, track.bytes());
    }
    return file;
}

// The form of .rmi files.
inline Bytes riffMidi(const Bytes &midi) {
    Bytes file = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'R', 'M', 'I', 'D', 'd', 'a', 't', 'a'};
    for (int shift = 0; shift < 32; shift += 8)
        file.push_back(static_cast<std::uint8_t>(midi.size() >> shift));
    append(file, midi);
    const std::size_t size = file.size() - 8;
    for (std::size_t i = 0; i < 4; ++i)
        file[4 + i] = static_cast<std::uint8_t>(size >> (8 * i));
    return file;
}

} // namespace velmora::tests
