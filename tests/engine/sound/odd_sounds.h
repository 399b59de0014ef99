#pragma once

// Sound files that are odd on purpose, made from a whole one, and how long each is.

#include "midi_bytes.h"

#include <functional>
#include <optional>
#include <random>
#include <string>

namespace velmora::tests {

struct OddSound {
    std::string what;
    Bytes bytes;
    // Of the whole file's length, where the file says enough to know.
    std::optional<double> times = std::nullopt;
    std::size_t holeAhead = 0; // so many bytes of a tag stand in front
};

inline Bytes id3Head(std::size_t size) {
    Bytes tag = {'I', 'D', '3', 4, 0, 0};
    for (int i = 3; i >= 0; --i)
        tag.push_back(static_cast<std::uint8_t>(size >> (7 * i) & 0x7F));
    return tag;
}

inline Bytes id3Tag(std::size_t size) {
    Bytes tag = id3Head(size);
    tag.resize(tag.size() + size, 0x41);
    return tag;
}

inline Bytes put(Bytes into, std::size_t at, const Bytes &what) {
    into.insert(into.begin() + static_cast<std::ptrdiff_t>(at), what.begin(), what.end());
    return into;
}

// With the number at this place, of four bytes, changed.
inline Bytes withNumber(Bytes bytes, std::size_t at, bool bigEndian,
                        const std::function<std::uint32_t(std::uint32_t)> &change) {
    const auto byte = [&](std::size_t i) -> std::uint8_t & {
        return bytes.at(at + (bigEndian ? i : 3 - i));
    };
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | byte(i);
    value = change(value);
    for (std::size_t i = 0; i < 4; ++i)
        byte(i) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    return bytes;
}

inline std::size_t placeOf(const Bytes &bytes, const std::string &mark) {
    return static_cast<std::size_t>(
        std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end()) - bytes.begin());
}

// A field that tells a length.
struct LengthField {
    std::string name;
    std::size_t at = 0;
    bool bigEndian = false;
    bool isCheckable = false; // a smaller one can be known for a lie by what follows
};

inline std::vector<LengthField> lengthFields(const std::string &form, const Bytes &bytes) {
    if (form == "wav")
        return {{"RIFF size", 4, false, true}, {"data size", placeOf(bytes, "data") + 4}};
    if (form == "aiff")
        return {{"FORM size", 4, true, true},
                {"COMM frames", placeOf(bytes, "COMM") + 10, true},
                {"SSND size", placeOf(bytes, "SSND") + 4, true}};
    if (form == "au")
        return {{"size", 8, true}};
    if (form == "flac")
        return {{"total", 22, true, true}};
    const std::size_t header = std::min(placeOf(bytes, "Xing"), placeOf(bytes, "Info"));
    if (form == "mp3" && header < 300)
        return {{"number of frames", header + 8, true, true},
                {"number of bytes", header + 12, true, true}};
    return {};
}

inline void addLies(std::vector<OddSound> &odd, const std::string &form, const Bytes &whole) {
    for (const LengthField &field : lengthFields(form, whole)) {
        const auto with = [&](auto change) {
            return withNumber(whole, field.at, field.bigEndian, change);
        };
        odd.push_back({field.name + " doubled", with([](std::uint32_t n) { return n * 2; }), 1.0});
        odd.push_back({field.name + " all ones", with([](std::uint32_t) { return ~0U; }), 1.0});
        odd.push_back({field.name + " halved", with([](std::uint32_t n) { return n / 2; }),
                       field.isCheckable ? std::optional(1.0) : std::nullopt});
        odd.push_back({field.name + " zero", with([](std::uint32_t) { return 0U; }),
                       field.isCheckable ? std::optional(1.0) : std::nullopt});
    }
}

// What a part of the form begins with, in the middle of sound.
inline Bytes chanceHeader(const std::string &form) {
    if (form == "mp3" || form == "mp2")
        return {0xFF, 0xFB, 0x90, 0x64};
    if (form == "flac")
        return {0xFF, 0xF8, 0xC9, 0x18, 0x01, 0x00};
    if (form == "ogg" || form == "opus")
        return {'O', 'g', 'g', 'S', 0, 2};
    return form == "wav" ? Bytes{'R', 'I', 'F', 'F'} : Bytes{'F', 'O', 'R', 'M'};
}

// `cutStep`: it is cut at each multiple of so many bytes.
inline std::vector<OddSound> oddSounds(const std::string &form, const Bytes &whole,
                                       std::size_t cutStep) {
    constexpr std::size_t bigTag = 50'000'000;
    std::mt19937 random(4);
    Bytes junk(5000);
    for (auto &byte : junk)
        byte = static_cast<std::uint8_t>(random());
    const bool mpeg = form == "mp3" || form == "mp2";
    // What a page held that is no more is gone for its time, too.
    const bool pages = form == "ogg" || form == "opus";
    const auto spoilt = pages ? std::nullopt : std::optional(1.0);
    Bytes overwritten = whole;
    const Bytes header = chanceHeader(form);
    std::copy(header.begin(), header.end(),
              overwritten.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
    std::vector<OddSound> odd = {{"junk before", put(whole, 0, junk), 1.0},
                                 {"junk behind", put(whole, whole.size(), junk), 1.0},
                                 {"junk between", put(whole, whole.size() / 2, junk), spoilt},
                                 {"a chance header inside", overwritten, spoilt},
                                 {"joined", put(whole, whole.size(), whole), 2.0}};
    if (mpeg || form == "flac") {
        odd.push_back({"joined with a tag between",
                       put(put(whole, whole.size(), id3Tag(3000)), whole.size() + 3010, whole),
                       2.0});
        odd.push_back({"behind a tag of 50 MB", put(whole, 0, id3Head(bigTag)), 1.0, bigTag});
        odd.push_back({"a tag in the middle", put(whole, whole.size() / 2, id3Tag(3000)), 1.0});
    }
    addLies(odd, form, whole);
    for (std::size_t size = cutStep; size < whole.size(); size += cutStep)
        odd.push_back({"cut at " + std::to_string(size),
                       Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))});
    return odd;
}

// The file, with the hole of its tag where it has one.
inline void writeOdd(const std::string &path, const OddSound &odd) {
    std::ofstream file(path, std::ios::binary);
    const auto bytes = [&](std::size_t from, std::size_t count) {
        file.write(reinterpret_cast<const char *>(odd.bytes.data()) + from,
                   static_cast<std::streamsize>(count));
    };
    constexpr std::size_t head = 10;
    const std::size_t ahead = odd.holeAhead > 0 ? head : 0;
    bytes(0, ahead);
    file.seekp(static_cast<std::streamoff>(ahead + odd.holeAhead));
    bytes(ahead, odd.bytes.size() - ahead);
}

} // namespace velmora::tests
