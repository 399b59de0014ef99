#include "platform/backends/media/medium_file.h"

#include <array>
#include <filesystem>
#include <fstream>

namespace velmora::platform::media {

using namespace std::string_view_literals;

namespace {

bool hasAt(std::string_view bytes, std::size_t offset, std::string_view mark) {
    return bytes.size() >= offset + mark.size() && bytes.compare(offset, mark.size(), mark) == 0;
}

struct Mark {
    std::size_t offset;
    std::string_view bytes;
};

constexpr std::array marks{
    Mark{4, "ftyp"sv}, // MP4, M4A, MOV, 3GP
    Mark{4, "moov"sv}, // older QuickTime begins with any of these
    Mark{4, "mdat"sv},
    Mark{4, "wide"sv},
    Mark{4, "skip"sv},
    Mark{0, "FLV"sv},
    Mark{0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv}, // ASF: WMA, WMV
    Mark{0, "\x1A\x45\xDF\xA3"sv},                 // Matroska, WebM
    Mark{0, "\0\0\1\xBA"sv},                       // MPEG program stream
    Mark{0, "\0\0\1\xB3"sv},                       // MPEG video alone
    Mark{0, "TTA"sv},
    Mark{0, "MAC "sv}, // Monkey's Audio
    Mark{0, "wvpk"sv}, // WavPack
    Mark{0, "MPCK"sv}, // Musepack
    Mark{0, "MP+"sv},
    Mark{0, "ADIF"sv},             // AAC
    Mark{0, "\x0B\x77"sv},         // AC-3
    Mark{0, "\x7F\xFE\x80\x01"sv}, // DTS
    Mark{0, ".RMF"sv},
};

// ADTS has the sync word of MPEG audio with a layer that MPEG audio does not use.
bool isAdts(std::string_view bytes) {
    return bytes.size() >= 2 && bytes[0] == '\xFF' && (bytes[1] & '\xF6') == '\xF0';
}

// Packets of one size, each beginning with the same byte (in the second form behind a time stamp).
bool isTransportStream(std::string_view bytes) {
    const auto syncs = [&](std::size_t first, std::size_t step) {
        return hasAt(bytes, first, "G"sv) && hasAt(bytes, first + step, "G"sv) &&
               hasAt(bytes, first + 2 * step, "G"sv);
    };
    return syncs(0, 188) || syncs(4, 192);
}

// An Ogg file names its streams in its first pages.
bool isOggWithPicture(std::string_view bytes) {
    return hasAt(bytes, 0, "OggS"sv) && (bytes.find("\x80theora"sv) != std::string_view::npos ||
                                         bytes.find("\1video\0"sv) != std::string_view::npos ||
                                         bytes.find("OVP80"sv) != std::string_view::npos ||
                                         bytes.find("BBCD"sv) != std::string_view::npos);
}

// Length of an ID3v2 tag at the beginning, 0 without one.
std::size_t tagLength(std::string_view bytes) {
    if (bytes.size() < 10 || !hasAt(bytes, 0, "ID3"sv))
        return 0;
    std::size_t length = 0;
    for (std::size_t i = 6; i < 10; ++i)
        length = length * 128 + (static_cast<unsigned char>(bytes[i]) & 0x7FU);
    const bool hasFooter = (static_cast<unsigned char>(bytes[5]) & 0x10U) != 0;
    return length + (hasFooter ? 20 : 10);
}

std::string readAt(std::ifstream &file, std::size_t offset, std::size_t limit) {
    std::string bytes(limit, '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(bytes.data(), static_cast<std::streamsize>(limit));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

} // namespace

bool isRegularFile(const std::string &path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && !error;
}

std::string beginningOf(const std::string &path, std::size_t limit) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes = file ? readAt(file, 0, limit) : std::string();
    const std::size_t tag = tagLength(bytes);
    return tag == 0 ? bytes : readAt(file, tag, limit);
}

MediumFile lookAtMedium(const std::string &path) {
    if (!isRegularFile(path))
        return {};
    return {true, beginningOf(path)};
}

bool belongsToPictureDevice(std::string_view beginning) {
    for (const Mark &mark : marks)
        if (hasAt(beginning, mark.offset, mark.bytes))
            return true;
    const bool isAvi = hasAt(beginning, 0, "RIFF"sv) &&
                       (hasAt(beginning, 8, "AVI "sv) || hasAt(beginning, 8, "CDXA"sv));
    return isAvi || isAdts(beginning) || isTransportStream(beginning) ||
           isOggWithPicture(beginning);
}

} // namespace velmora::platform::media
