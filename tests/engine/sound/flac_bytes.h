#pragma once

// Writes FLAC files frame by frame, uncompressed: every byte of the sound lies in them as it is.

#include "midi_bytes.h"

#include <algorithm>

namespace velmora::tests {

inline std::uint8_t flacCrc8(const Bytes &bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) {
        crc ^= byte;
        for (int i = 0; i < 8; ++i)
            crc = (crc & 0x80) != 0 ? ((crc << 1) ^ 0x07) & 0xFF : (crc << 1) & 0xFF;
    }
    return static_cast<std::uint8_t>(crc);
}

inline std::uint16_t flacCrc16(const Bytes &bytes) {
    unsigned crc = 0;
    for (const auto byte : bytes) {
        crc ^= unsigned{byte} << 8;
        for (int i = 0; i < 8; ++i)
            crc = (crc & 0x8000) != 0 ? ((crc << 1) ^ 0x8005) & 0xFFFF : (crc << 1) & 0xFFFF;
    }
    return static_cast<std::uint16_t>(crc);
}

constexpr int flacBlock = 4096;

// What stands ahead of the frames: 44,100 Hz, one channel, 16 bits, blocks of 4096 samples.
inline Bytes flacHeader(int samples) {
    Bytes file = {'f', 'L', 'a', 'C', 0x80, 0, 0, 34, 0x10, 0, 0x10, 0};
    file.resize(42);
    const Bytes form = {0x0A, 0xC4, 0x40, 0xF0};
    std::copy(form.begin(), form.end(), file.begin() + 18);
    for (std::size_t i = 0; i < 4; ++i)
        file[22 + i] = static_cast<std::uint8_t>(samples >> (24 - 8 * i));
    return file;
}

// One frame; a shorter one than the others is the last.
inline Bytes flacFrame(int number, const std::vector<std::int16_t> &samples) {
    const auto count = static_cast<int>(samples.size());
    const bool shorter = count != flacBlock;
    Bytes frame = {0xFF, 0xF8, static_cast<std::uint8_t>(shorter ? 0x79 : 0xC9), 0x08};
    if (number < 0x80) {
        frame.push_back(static_cast<std::uint8_t>(number));
    } else { // up to 0x7FF
        frame.push_back(static_cast<std::uint8_t>(0xC0 | number >> 6));
        frame.push_back(static_cast<std::uint8_t>(0x80 | (number & 0x3F)));
    }
    if (shorter)
        append(frame, {(count - 1) >> 8, count - 1});
    frame.push_back(flacCrc8(frame));
    frame.push_back(0x02); // samples as they are
    for (const std::int16_t sample : samples)
        append(frame, {sample >> 8, sample});
    const std::uint16_t crc = flacCrc16(frame);
    append(frame, {crc >> 8, crc});
    return frame;
}

// The first bytes of a frame of this number, as three samples of sound that happen to be them.
inline std::vector<std::int16_t> soundLikeAFlacHeader(int number) {
    Bytes bytes = {0xFF, 0xF8, 0xC9, 0x08, static_cast<std::uint8_t>(number)};
    bytes.push_back(flacCrc8(bytes));
    std::vector<std::int16_t> samples;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        samples.push_back(static_cast<std::int16_t>(bytes[i] << 8 | bytes[i + 1]));
    return samples;
}

inline Bytes flacFile(const std::vector<std::int16_t> &samples) {
    Bytes file = flacHeader(static_cast<int>(samples.size()));
    int number = 0;
    for (auto at = samples.begin(); at != samples.end(); ++number) {
        const auto count = std::min<std::ptrdiff_t>(flacBlock, samples.end() - at);
        append(file, flacFrame(number, {at, at + count}));
        at += count;
    }
    return file;
}

} // namespace velmora::tests
