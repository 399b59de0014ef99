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
    bool keepsTime = false; // as long as the whole, where others leave out what is damaged
    std::size_t hole = 0;   // so many bytes of a tag stand here
    std::size_t holeAt = 0;
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

inline std::size_t placeOf(const Bytes &bytes, const std::string &mark, std::size_t from = 0) {
    return static_cast<std::size_t>(std::search(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                                                bytes.end(), mark.begin(), mark.end()) -
                                    bytes.begin());
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

// Where the pages of a stream begin.
inline std::vector<std::size_t> pagesOf(const Bytes &bytes) {
    std::vector<std::size_t> pages;
    const std::string mark("OggS\0", 5);
    for (std::size_t at = placeOf(bytes, mark); at < bytes.size();
         at = placeOf(bytes, mark, at + 1))
        pages.push_back(at);
    return pages;
}

// A page carries a sum of itself, which counts as zero there.
inline void sealPage(Bytes &bytes, std::size_t from, std::size_t to) {
    constexpr std::size_t sumAt = 22;
    const auto sum = [&](std::size_t i) -> std::uint8_t & { return bytes.at(from + sumAt + i); };
    for (std::size_t i = 0; i < 4; ++i)
        sum(i) = 0;
    std::uint32_t crc = 0;
    for (std::size_t at = from; at < to; ++at) {
        crc ^= std::uint32_t{bytes[at]} << 24;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80000000U) != 0 ? crc << 1 ^ 0x04C11DB7 : crc << 1;
    }
    for (std::size_t i = 0; i < 4; ++i)
        sum(i) = static_cast<std::uint8_t>(crc >> (8 * i));
}

// The last page tells where the piece ends. Less than it holds cuts the piece there.
inline void addPageLies(std::vector<OddSound> &odd, const Bytes &whole) {
    const auto pages = pagesOf(whole);
    const auto with = [&](std::size_t page, std::size_t at, const Bytes &value) {
        Bytes lying = whole;
        std::copy(value.begin(), value.end(),
                  lying.begin() + static_cast<std::ptrdiff_t>(pages[page] + at));
        sealPage(lying, pages[page], page + 1 < pages.size() ? pages[page + 1] : lying.size());
        return lying;
    };
    constexpr std::size_t positionAt = 6;
    const std::size_t last = pages.size() - 1;
    odd.push_back({"end in 3 hours", with(last, positionAt, {0, 0, 0, 0x20, 0, 0, 0, 0}), 1.0});
    odd.push_back(
        {"end in a million years", with(last, positionAt, {0, 0, 0, 0, 0, 0, 0, 0x20}), 1.0});
    odd.push_back({"end at no place", with(last, positionAt, Bytes(8, 0xFF))});
    odd.push_back({"end at the beginning", with(last, positionAt, Bytes(8, 0))});
    odd.push_back({"a page in the middle at the end of time",
                   with(last / 2, positionAt, {0, 0, 0, 0, 0, 0, 0, 0x7F})});
    odd.push_back({"a page in the middle of another piece", with(last / 2, 14, {1, 2, 3, 4})});
    odd.push_back({"a page twice",
                   put(whole, pages[last / 2],
                       Bytes(whole.begin() + static_cast<std::ptrdiff_t>(pages[last / 2]),
                             whole.begin() + static_cast<std::ptrdiff_t>(pages[last / 2 + 1]))),
                   1.0});
    odd.push_back({"a tag between two pages", put(whole, pages[last / 2], id3Tag(3000)), 1.0});
    odd.push_back(
        {"foreign bytes between two pages", put(whole, pages[last / 2], Bytes(5000, 0x55)), 1.0});
}

// A tag, comment or the like of this size in front of the sound, as the form has it.
inline std::optional<OddSound> withBigChunk(const std::string &form, const Bytes &whole,
                                            std::uint32_t size) {
    const bool isWav = form == "wav";
    const std::string what = "a chunk of " + std::to_string(size / 1'000'000) + " MB ahead";
    if (isWav || form == "aiff") {
        const std::size_t at = placeOf(whole, isWav ? "data" : "SSND");
        Bytes chunk = isWav ? Bytes{'L', 'I', 'S', 'T'} : Bytes{'A', 'N', 'N', 'O'};
        chunk.resize(8);
        chunk = withNumber(
            chunk, 4, !isWav, [&](std::uint32_t) { return size; });
        const Bytes grown =
            withNumber(whole, 4, !isWav, [&](std::uint32_t n) { return n + size + 8; });
        return OddSound{what, put(grown, at, chunk), 1.0, false, size, at + chunk.size()};
    }
    if (form == "au") {
        const auto grow = [&](std::uint32_t n) { return n + size; };
        return OddSound{what, withNumber(whole, 4, true, grow), 1.0, false, size, 24};
    }
    if (form == "flac") { // whose blocks are of 16 MB at most
        constexpr std::size_t firstEnd = 42;
        return OddSound{"a block of 16 MB ahead",
                        put(whole, firstEnd, {1, 0xFF, 0xFF, 0xFF}),
                        1.0,
                        false,
                        0xFFFFFF,
                        firstEnd + 4};
    }
    return std::nullopt;
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

struct OddSteps {
    std::size_t cut = 1024; // it is cut at each multiple of so many bytes
    std::size_t header = 1; // each of so many bytes of its beginning is wrong in turn
};

inline std::vector<OddSound> oddSounds(const std::string &form, const Bytes &whole,
                                       OddSteps steps) {
    constexpr std::size_t bigTag = 50'000'000;
    std::mt19937 random(4);
    Bytes junk(5000);
    for (auto &byte : junk)
        byte = static_cast<std::uint8_t>(random());
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
    odd.push_back({"joined with a tag between",
                   put(put(whole, whole.size(), id3Tag(3000)), whole.size() + 3010, whole), 2.0});
    odd.push_back(
        {"behind a tag of 50 MB", put(whole, 0, id3Head(bigTag)), 1.0, false, bigTag, 10});
    odd.push_back({"a tag in the middle", put(whole, whole.size() / 2, id3Tag(3000)), spoilt});
    odd.push_back({"a tag behind", put(whole, whole.size(), id3Tag(3000)), 1.0});
    if (const auto big = withBigChunk(form, whole, bigTag))
        odd.push_back(*big);
    addLies(odd, form, whole);
    if (pages)
        addPageLies(odd, whole);
    constexpr std::size_t headerSize = 96;
    for (std::size_t at = steps.header - 1; at < headerSize; at += steps.header) {
        Bytes wrong = whole;
        wrong.at(at) ^= 0xFF;
        odd.push_back({"byte " + std::to_string(at) + " wrong", wrong, std::nullopt, true});
    }
    for (std::size_t size = steps.cut; size < whole.size(); size += steps.cut)
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
    bytes(0, odd.holeAt);
    file.seekp(static_cast<std::streamoff>(odd.holeAt + odd.hole));
    bytes(odd.holeAt, odd.bytes.size() - odd.holeAt);
}

} // namespace velmora::tests
