#include "platform/backends/sound/readers/midi_file.h"

#include <algorithm>
#include <cstring>

namespace velmora::platform::sound {

namespace {

constexpr std::size_t maxTracks = 65535; // as many as the header can name
constexpr double defaultTempo = 500000;  // microseconds to the quarter

using Bytes = std::span<const std::uint8_t>;

std::uint32_t bigEndian(Bytes bytes, std::size_t at, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

// A number of at most four bytes with seven bits each.
bool readLength(Bytes bytes, std::size_t &at, std::uint32_t &value) {
    value = 0;
    for (int i = 0; i < 4; ++i) {
        if (at >= bytes.size())
            return false;
        const std::uint8_t byte = bytes[at++];
        value = value << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0)
            return true;
    }
    return false;
}

// Skips a length and as many bytes. What is cut off counts as its own end.
bool readBlock(Bytes bytes, std::size_t &at, Bytes &block) {
    std::uint32_t size = 0;
    if (!readLength(bytes, at, size) || size > bytes.size() - at)
        return false;
    block = bytes.subspan(at, size);
    at += size;
    return true;
}

double framesPerSecond(std::uint16_t division) {
    const int code = 256 - (division >> 8);
    return code == 29 ? 30000.0 / 1001.0 : static_cast<double>(code);
}

} // namespace

std::optional<MidiFile> MidiFile::parse(std::vector<std::uint8_t> bytes) {
    if (bytes.size() < 14 || bytes.size() > maxBytes || std::memcmp(bytes.data(), "MThd", 4) != 0)
        return std::nullopt;
    MidiFile file;
    file.bytes_ = std::move(bytes);
    const Bytes all(file.bytes_);
    const std::size_t headerSize = bigEndian(all, 4, 4);
    file.division_ = static_cast<std::uint16_t>(bigEndian(all, 12, 2));
    const bool smpte = (file.division_ & 0x8000) != 0;
    if (headerSize < 6 || (smpte ? (file.division_ & 0xFF) == 0 : file.division_ == 0))
        return std::nullopt;
    for (std::size_t at = 8 + headerSize;
         at + 8 <= all.size() && file.tracks_.size() < maxTracks;) {
        const std::size_t size =
            std::min<std::size_t>(bigEndian(all, at + 4, 4), all.size() - at - 8);
        if (std::memcmp(all.data() + at, "MTrk", 4) == 0)
            file.tracks_.push_back({at + 8, size});
        at += 8 + size;
    }
    Events events(file);
    while (events.next()) {
    }
    file.seconds_ = events.seconds();
    if (file.seconds_ <= 0)
        return std::nullopt;
    return file;
}

bool MidiFile::Events::Later::operator()(std::size_t a, std::size_t b) const {
    const Track &first = (*tracks)[a];
    const Track &second = (*tracks)[b];
    return first.tick != second.tick ? first.tick > second.tick : a > b;
}

MidiFile::Events::Events(const MidiFile &file) {
    const bool smpte = (file.division_ & 0x8000) != 0;
    secondsPerTempoUnit_ = smpte ? 0 : 1e-6 / file.division_;
    secondsPerTick_ = smpte ? 1.0 / (framesPerSecond(file.division_) * (file.division_ & 0xFF))
                            : defaultTempo * secondsPerTempoUnit_;
    for (const Range &range : file.tracks_) {
        Track track;
        track.bytes = Bytes(file.bytes_).subspan(range.start, range.size);
        if (readDelta(track)) {
            heap_.push_back(tracks_.size());
            tracks_.push_back(track);
        }
    }
    std::make_heap(heap_.begin(), heap_.end(), Later{&tracks_});
}

std::optional<MidiEvent> MidiFile::Events::next() {
    while (!heap_.empty()) {
        std::pop_heap(heap_.begin(), heap_.end(), Later{&tracks_});
        Track &track = tracks_[heap_.back()];
        moveTo(track.tick);
        MidiEvent event;
        bool wanted = false;
        const bool goesOn = readEvent(track, event, wanted) && readDelta(track);
        if (goesOn)
            std::push_heap(heap_.begin(), heap_.end(), Later{&tracks_});
        else
            heap_.pop_back();
        if (wanted) {
            event.seconds = seconds_;
            return event;
        }
    }
    return std::nullopt;
}

void MidiFile::Events::moveTo(std::uint64_t tick) {
    seconds_ += static_cast<double>(tick - tick_) * secondsPerTick_;
    tick_ = tick;
}

bool MidiFile::Events::readDelta(Track &track) {
    std::uint32_t delta = 0;
    if (track.at >= track.bytes.size() || !readLength(track.bytes, track.at, delta))
        return false;
    track.tick += delta;
    return track.at < track.bytes.size();
}

// False: the track ends with this event or is damaged here.
bool MidiFile::Events::readEvent(Track &track, MidiEvent &event, bool &wanted) {
    const Bytes bytes = track.bytes;
    std::uint8_t status = bytes[track.at];
    if (status >= 0x80)
        ++track.at;
    else
        status = track.running;
    if (status < 0x80)
        return false;
    if (status < 0xF0) {
        const std::size_t count = (status & 0xF0) == 0xC0 || (status & 0xF0) == 0xD0 ? 1 : 2;
        if (bytes.size() - track.at < count || bytes[track.at] >= 0x80 ||
            (count == 2 && bytes[track.at + 1] >= 0x80))
            return false;
        track.running = status;
        event.status = status;
        event.first = bytes[track.at];
        event.second = count == 2 ? bytes[track.at + 1] : 0;
        track.at += count;
        wanted = true;
        return true;
    }
    track.running = 0;
    if (status == 0xFF)
        return readMeta(track);
    if (status == 0xF0 || status == 0xF7) {
        Bytes block;
        if (!readBlock(bytes, track.at, block))
            return false;
        event.status = 0xF0;
        event.exclusive =
            !block.empty() && block.back() == 0xF7 ? block.first(block.size() - 1) : block;
        wanted = status == 0xF0 && !event.exclusive.empty();
        return true;
    }
    // Messages of the wire have no place in a file; their data bytes are passed over.
    track.at += status == 0xF2 ? 2 : status == 0xF1 || status == 0xF3 ? 1 : 0;
    return track.at < bytes.size();
}

bool MidiFile::Events::readMeta(Track &track) {
    if (track.at >= track.bytes.size())
        return false;
    const std::uint8_t type = track.bytes[track.at++];
    Bytes block;
    if (!readBlock(track.bytes, track.at, block) || type == 0x2F)
        return false;
    if (type == 0x51 && block.size() >= 3 && secondsPerTempoUnit_ > 0)
        secondsPerTick_ = bigEndian(block, 0, 3) * secondsPerTempoUnit_;
    return true;
}

} // namespace velmora::platform::sound
