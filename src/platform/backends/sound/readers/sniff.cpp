#include "platform/backends/sound/readers/sniff.h"

#include "platform/backends/sound/readers/mpeg_frame.h"
#include "platform/backends/sound/readers/ogg_length.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace velmora::platform::sound {

namespace {

using namespace std::string_view_literals;

// Frames may stand behind the remains of a cut frame, but not anywhere in a file of another kind.
constexpr std::int64_t junkAtStart = 4096;
// Behind a tag there may be any amount of padding. No further is looked for forms that are certain.
constexpr std::int64_t junkBehindTag = 65536;

// Beginnings of files that can hold frames of MPEG audio without being a sound file.
constexpr std::array others = {
    "\x00\x00\x01\xBA"sv, // program stream
    "\x00\x00\x01\xB3"sv, // video stream
    "\x1A\x45\xDF\xA3"sv, // Matroska
    "0&\xB2u\x8E\x66\xCF\x11"sv,
    "FLV"sv,
    "PK\x03\x04"sv,
    "Rar!"sv,
    "7z\xBC\xAF"sv,
    "%PDF"sv,
    "\x7F"
    "ELF"sv,
    "MZ"sv,
    "\x89PNG"sv,
    "GIF8"sv,
    "\xFF\xD8\xFF"sv,
    ".RMF"sv,
    ".ra\xFD"sv,
    "MAC "sv,
    "TTA1"sv,
    "wvpk"sv,
    "MPCK"sv,
    "MP+"sv,
    "tBaK"sv,
    "ADIF"sv,
    "BM"sv,
    "\x1F\x8B"sv,
};

std::string_view view(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

std::uint32_t littleEndian(std::string_view bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    return value;
}

struct Chunk {
    std::int64_t start = 0; // of the content
    std::int64_t size = 0;  // as far as the file goes
};

// The first chunk of that name in a RIFF file; size 0 if there is none.
Chunk findChunk(const ByteSource &source, std::string_view name) {
    std::array<std::uint8_t, 8> head{};
    std::int64_t at = 12;
    for (int chunks = 0; chunks < 1000; ++chunks) {
        if (source.read(at, head) < head.size())
            break;
        const std::int64_t size = littleEndian(view(head).substr(4));
        if (view(head).substr(0, 4) == name)
            return {at + 8, std::min(size, source.size() - at - 8)};
        at += 8 + size + (size & 1);
    }
    return {};
}

Sniffed sniffRiff(const ByteSource &source, std::string_view form) {
    const std::int64_t size = source.size();
    if (form == "RMID") {
        const Chunk data = findChunk(source, "data");
        return {Content::Midi, data.start, data.size};
    }
    if (form != "WAVE")
        return {};
    // MPEG audio in a wave file: the frames alone are what the decoder wants.
    std::array<std::uint8_t, 2> tag{};
    const Chunk format = findChunk(source, "fmt ");
    if (format.size >= 16 && source.read(format.start, tag) == 2 && tag[1] == 0 &&
        (tag[0] == 0x50 || tag[0] == 0x55)) {
        const Chunk data = findChunk(source, "data");
        return {Content::Mpeg, data.start, data.size};
    }
    return {Content::SoundFile, 0, size};
}

// All streams of an Ogg file begin in its first pages: one picture among them makes it a film.
Sniffed sniffOgg(const ByteSource &source, std::int64_t start) {
    std::array<std::uint8_t, 27 + 255 + 16> page{};
    std::int64_t at = start;
    bool sound = false;
    for (int pages = 0; pages < 16; ++pages) {
        const std::size_t got = source.read(at, page);
        const std::string_view bytes = view(std::span(page).first(got));
        if (got < 28 || bytes.substr(0, 4) != "OggS" || (page[5] & 2) == 0)
            break;
        const std::size_t segments = page[26];
        if (27 + segments > got)
            break;
        std::int64_t body = 0;
        for (std::size_t i = 0; i < segments; ++i)
            body += page[27 + i];
        const std::string_view codec = bytes.substr(27 + segments);
        if (codec.starts_with("\x01vorbis"sv) || codec.starts_with("OpusHead"sv) ||
            codec.starts_with("\x7F"
                              "FLAC"sv))
            sound = true;
        else if (!codec.starts_with("fishead"sv))
            return {};
        at += static_cast<std::int64_t>(27 + segments) + body;
    }
    return sound ? Sniffed{Content::SoundFile, start, source.size() - start} : Sniffed{};
}

bool isTransportStream(const ByteSource &source) {
    for (const std::int64_t lead : {0, 4}) { // 4: packets with a time stamp ahead
        bool all = true;
        for (std::int64_t i = 0; i < 3 && all; ++i) {
            std::array<std::uint8_t, 1> sync{};
            all = source.read(lead + i * (188 + lead), sync) == 1 && sync[0] == 0x47;
        }
        if (all)
            return true;
    }
    return false;
}

Sniffed sniffMpeg(const ByteSource &source, std::int64_t from, std::int64_t junk) {
    const auto start = findMpegStream(source, from, junk);
    if (!start)
        return {};
    return {Content::Mpeg, *start, source.size() - *start};
}

// A file of a form whose beginning is certain wherever it stands, behind something else.
Sniffed sniffBehindJunk(const ByteSource &source, std::int64_t from) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(junkBehindTag));
    bytes.resize(source.read(from, bytes));
    const std::string_view all = view(bytes);
    if (const auto at = all.find("fLaC\0\0\0\x22"sv); at != all.npos) {
        const std::int64_t start = from + static_cast<std::int64_t>(at);
        return {Content::SoundFile, start, source.size() - start};
    }
    for (auto at = all.find("OggS"sv); at != all.npos; at = all.find("OggS"sv, at + 1)) {
        const std::int64_t start = from + static_cast<std::int64_t>(at);
        if (oggStreamBegins(source, start))
            return sniffOgg(source, start);
    }
    return {};
}

} // namespace

Sniffed sniff(const ByteSource &source) {
    std::array<std::uint8_t, 64> beginning{};
    const std::int64_t size = source.size();
    std::int64_t behindTags = 0;
    // Tags may stand in a row; a file that is nothing but tags ends the search.
    for (int tags = 0; tags < 8; ++tags) {
        const std::int64_t tag = id3v2Size(source, behindTags);
        if (tag == 0)
            break;
        behindTags += tag;
    }
    const std::string_view head =
        view(std::span(beginning).first(source.read(behindTags, beginning)));
    if (head.size() < 4)
        return {};
    const std::string_view form = head.size() >= 12 ? head.substr(8, 4) : ""sv;
    const std::string_view mark = head.substr(0, 4);
    if (mark == "fLaC")
        return {Content::SoundFile, behindTags, size - behindTags};
    if (behindTags == 0) {
        if (mark == "RIFF" || mark == "RIFX")
            return sniffRiff(source, form);
        if ((mark == "RF64" || mark == "BW64") && form == "WAVE")
            return {Content::SoundFile, 0, size};
        if (mark == "FORM")
            return form == "AIFF" || form == "AIFC" ? Sniffed{Content::SoundFile, 0, size}
                                                    : Sniffed{};
        if (mark == ".snd" || mark == "dns." || mark == "caff" ||
            head.starts_with("riff\x2E\x91\xCF\x11"sv))
            return {Content::SoundFile, 0, size};
        if (mark == "OggS")
            return sniffOgg(source, 0);
        if (mark == "MThd")
            return {Content::Midi, 0, size};
    }
    if (head.substr(4, 4) == "ftyp" || isTransportStream(source) ||
        std::any_of(others.begin(), others.end(),
                    [&](std::string_view other) { return head.starts_with(other); }))
        return {};
    const Sniffed mpeg =
        sniffMpeg(source, behindTags, behindTags > 0 ? junkBehindTag : junkAtStart);
    return mpeg.content == Content::Mpeg ? mpeg : sniffBehindJunk(source, behindTags);
}

} // namespace velmora::platform::sound
