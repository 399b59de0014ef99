#include "platform/backends/sound/readers/flac_length.h"

#include "platform/backends/sound/readers/flac_subframes.h"
#include "platform/backends/sound/readers/joined_parts.h"
#include "platform/backends/sound/readers/mpeg_frame.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <span>
#include <vector>

namespace velmora::platform::sound {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Where the header of the file has the total: 36 bits, the first four beside other things.
constexpr std::int64_t totalAt = 21;
constexpr std::size_t totalBytes = 5;
constexpr std::int64_t headSize = 26;

template <unsigned Width, unsigned Polynomial> constexpr auto crcTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte << (Width - 8);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> (Width - 1) & 1) != 0 ? crc << 1 ^ Polynomial : crc << 1;
        table[byte] = static_cast<std::uint16_t>(crc & ((1U << Width) - 1));
    }
    return table;
}

std::uint8_t crc8(Bytes bytes) {
    static constexpr auto table = crcTable<8, 0x107>();
    std::uint8_t crc = 0;
    for (const std::uint8_t byte : bytes)
        crc = static_cast<std::uint8_t>(table[crc ^ byte]);
    return crc;
}

std::uint16_t crc16(std::uint16_t crc, std::uint8_t byte) {
    static constexpr auto table = crcTable<16, 0x18005>();
    return static_cast<std::uint16_t>(crc << 8 ^ table[crc >> 8 ^ byte]);
}

// What every frame of the file has in common.
struct Stream {
    std::int64_t block = 0; // samples of every frame but the last, where it is one for all
    std::int64_t longestBlock = 0;
    int rate = 0;
    int channels = 0;
    int bits = 0;
    std::int64_t total = 0; // samples; 0: not told
};

std::optional<Stream> readHead(const ByteSource &source) {
    std::array<std::uint8_t, headSize> head{};
    if (source.read(0, head) < head.size() || std::memcmp(head.data(), "fLaC", 4) != 0)
        return std::nullopt;
    Stream stream;
    stream.block = head[8] << 8 | head[9];
    stream.longestBlock = head[10] << 8 | head[11];
    stream.rate = head[18] << 12 | head[19] << 4 | head[20] >> 4;
    stream.channels = (head[20] >> 1 & 7) + 1;
    stream.bits = ((head[20] & 1) << 4 | head[21] >> 4) + 1;
    stream.total = std::int64_t{head[21] & 15} << 32 | std::int64_t{head[22]} << 24 |
                   head[23] << 16 | head[24] << 8 | head[25];
    return stream;
}

// A frame as its header tells it.
struct Frame {
    std::size_t at = 0;     // in the bytes that were looked at
    std::size_t header = 0; // bytes
    std::int64_t first = 0; // of the piece's samples
    std::int64_t samples = 0;
    std::int64_t end() const { return first + samples; }
};

// The number in front is coded as text is in UTF-8, up to 36 bits.
bool codedNumber(Bytes bytes, std::size_t &at, std::uint64_t &number) {
    if (at >= bytes.size())
        return false;
    const std::uint8_t first = bytes[at++];
    int follow = 0;
    while (follow < 7 && (first & (0x80 >> follow)) != 0)
        ++follow;
    if (follow == 1 || first == 0xFF)
        return false;
    number = first & (follow == 0 ? 0x7F : 0x7F >> follow);
    for (int i = 1; i < follow; ++i) {
        if (at >= bytes.size() || (bytes[at] & 0xC0) != 0x80)
            return false;
        number = number << 6 | (bytes[at++] & 0x3F);
    }
    return true;
}

// Whether the second half of the header speaks of this stream; `extra` are the bytes of a rate that
// has no code.
bool isOfStream(const Stream &stream, std::uint8_t rateCode, Bytes extra, std::uint8_t form) {
    constexpr std::array rates{0,     88200, 176400, 192000, 8000,  16000,
                               22050, 24000, 32000,  44100,  48000, 96000};
    constexpr std::array bits{0, 8, 12, -1, 16, 20, 24, 32};
    const int channelCode = form >> 4;
    const int bitsOfFrame = bits[static_cast<std::size_t>(form >> 1 & 7)];
    int rate = rateCode < rates.size() ? rates[rateCode] : extra[0];
    if (rateCode == 12)
        rate *= 1000;
    else if (rateCode > 12)
        rate = (rate << 8 | extra[1]) * (rateCode == 14 ? 10 : 1);
    return (rate == 0 || rate == stream.rate) &&
           (channelCode < 8 ? channelCode + 1 : 2) == stream.channels &&
           (bitsOfFrame == 0 || bitsOfFrame == stream.bits);
}

std::optional<Frame> parseHeader(Bytes bytes, const Stream &stream) {
    if (bytes.size() < 6 || bytes[0] != 0xFF || (bytes[1] & 0xFE) != 0xF8)
        return std::nullopt;
    const int sizeCode = bytes[2] >> 4;
    const auto rateCode = static_cast<std::uint8_t>(bytes[2] & 15);
    if (sizeCode == 0 || rateCode == 15 || (bytes[3] >> 4) > 10 || (bytes[3] & 1) != 0)
        return std::nullopt;
    std::uint64_t number = 0;
    std::size_t at = 4;
    if (!codedNumber(bytes, at, number))
        return std::nullopt;
    const std::size_t sizeAt = at;
    at += sizeCode == 6 ? 1 : sizeCode == 7 ? 2 : 0;
    const std::size_t rateAt = at;
    at += rateCode < 12 ? 0 : rateCode == 12 ? 1 : 2;
    if (at >= bytes.size() || crc8(bytes.first(at)) != bytes[at] ||
        !isOfStream(stream, rateCode, bytes.subspan(rateAt), bytes[3]))
        return std::nullopt;
    Frame frame;
    // It counts frames of one size, or samples.
    frame.first =
        static_cast<std::int64_t>(number) * ((bytes[1] & 1) == 0 ? stream.block : std::int64_t{1});
    if (sizeCode == 1)
        frame.samples = 192;
    else if (sizeCode <= 5)
        frame.samples = 576 << (sizeCode - 2);
    else if (sizeCode == 6)
        frame.samples = bytes[sizeAt] + 1;
    else if (sizeCode == 7)
        frame.samples = (bytes[sizeAt] << 8 | bytes[sizeAt + 1]) + 1;
    else
        frame.samples = 256 << (sizeCode - 8);
    if (stream.longestBlock != 0 && frame.samples > stream.longestBlock)
        return std::nullopt;
    frame.header = at + 1;
    return frame;
}

// The sizes of blocks differ where the samples are counted, or where the header of the file lies.
// Where the frames are counted, the first one is as long as all.
void learnBlock(const ByteSource &source, Stream &stream) {
    std::array<std::uint8_t, 16> head{};
    Stream any = stream;
    any.longestBlock = 0;
    const std::size_t got = source.read(flacSoundStart(source, 0), head);
    if (const auto first = parseHeader(Bytes(head).first(got), any)) {
        stream.block = first->samples;
        stream.longestBlock = std::max(stream.longestBlock, first->samples);
    }
}

// The first at or behind this place that reads as a frame of the stream.
std::optional<Frame> frameFrom(Bytes bytes, std::size_t place, const Stream &stream) {
    for (; place < bytes.size(); ++place) {
        const void *found = std::memchr(&bytes[place], 0xFF, bytes.size() - place);
        if (found == nullptr)
            break;
        place = static_cast<std::size_t>(static_cast<const std::uint8_t *>(found) - bytes.data());
        if (auto frame = parseHeader(bytes.subspan(place), stream)) {
            frame->at = place;
            return frame;
        }
    }
    return std::nullopt;
}

// All that reads as a frame of the stream.
std::vector<Frame> framesIn(Bytes bytes, const Stream &stream) {
    constexpr std::size_t most = 20000;
    std::vector<Frame> frames;
    for (auto frame = frameFrom(bytes, 0, stream); frame;
         frame = frameFrom(bytes, frame->at + 1, stream))
        frames.push_back(*frame);
    if (frames.size() > most)
        frames.erase(frames.begin(), frames.end() - most);
    return frames;
}

// No frame is longer than its samples as they are.
std::size_t longestFrame(const Stream &stream) {
    constexpr std::size_t headers = 128;
    const auto samples = static_cast<std::size_t>(std::max(stream.longestBlock, stream.block));
    return headers + samples * static_cast<std::size_t>(stream.channels) *
                         static_cast<std::size_t>(stream.bits + 8) / 8;
}

// Looks for the end among the last bytes of a file. A file made to deceive has so many headers that
// no end to trying them would be in sight, so the effort has a limit.
class FrameSearch {
public:
    FrameSearch(Bytes bytes, const Stream &stream)
        : bytes_(bytes), frames_(framesIn(bytes, stream)), longest_(longestFrame(stream)),
          bits_(stream.bits) {}

    // The frame that the bytes end with, whole.
    const Frame *lastWhole() {
        const auto found = std::find_if(frames_.rbegin(), frames_.rend(), [&](const Frame &frame) {
            return endsWhole(frame, bytes_.size());
        });
        return found == frames_.rend() ? nullptr : &*found;
    }

    // The last frame that a whole one leads up to.
    const Frame *lastLedTo() {
        for (auto frame = frames_.rbegin(); frame != frames_.rend() && effort_ > 0; ++frame) {
            const auto leads = [&](const Frame &leader) {
                --effort_;
                return leader.end() == frame->first && endsWhole(leader, frame->at);
            };
            if (std::any_of(frame + 1, frames_.rend(), leads))
                return &*frame;
        }
        return nullptr;
    }

    // Whether all of the frame is there, whatever may stand behind it.
    bool isWhole(const Frame &frame) {
        constexpr std::size_t checkSum = 2;
        const std::size_t sound = frame.at + frame.header;
        const auto size = flacSubframesSize(bytes_.subspan(sound),
                                            {static_cast<std::size_t>(frame.samples),
                                             static_cast<unsigned>(bytes_[frame.at + 3] >> 4),
                                             static_cast<unsigned>(bits_)});
        return size && sound + *size + checkSum <= bytes_.size() &&
               endsWhole(frame, sound + *size + checkSum);
    }

private:
    static constexpr std::size_t shortest = 8;

    // The check sum is such that over all bytes of a frame there remains zero.
    bool endsWhole(const Frame &frame, std::size_t end) {
        if (end > frame.at + longest_ || end <= frame.at + shortest || effort_ <= 0)
            return false;
        effort_ -= static_cast<std::int64_t>(end - frame.at);
        const Bytes all = bytes_.subspan(frame.at, end - frame.at);
        return std::accumulate(all.begin(), all.end(), std::uint16_t{0}, crc16) == 0;
    }

    Bytes bytes_;
    std::vector<Frame> frames_;
    std::size_t longest_;
    int bits_;
    std::int64_t effort_ = std::int64_t{1} << 26; // steps, of some nanoseconds each
};

std::optional<Stream> readStream(const ByteSource &source) {
    auto stream = readHead(source);
    if (stream && stream->block != stream->longestBlock)
        learnBlock(source, *stream);
    return stream;
}

std::vector<std::uint8_t> readPart(const ByteSource &source, std::int64_t start,
                                   std::int64_t size) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    bytes.resize(source.read(start, bytes));
    return bytes;
}

std::optional<std::int64_t> samplesUpTo(const ByteSource &source, const Stream &stream,
                                        std::int64_t end) {
    constexpr std::int64_t firstTail = 32768;
    constexpr std::int64_t longestTail = std::int64_t{1} << 23;
    for (std::int64_t tail = firstTail;; tail *= 8) {
        const std::int64_t start = std::max<std::int64_t>(end - tail, 0);
        const auto bytes = readPart(source, start, end - start);
        FrameSearch search(bytes, stream);
        if (const Frame *last = search.lastWhole())
            return last->end();
        if (const Frame *last = search.lastLedTo())
            return search.isWhole(*last) ? last->end() : last->first;
        if (start == 0 || tail >= longestTail)
            return std::nullopt;
    }
}

// Whether the frames all through the file rise towards that end. Where files were joined, what
// stands at the end belongs to another piece.
bool leadsTo(const ByteSource &source, const Stream &stream, std::int64_t samples) {
    constexpr std::int64_t places = 16;
    constexpr std::int64_t piece = 65536;
    std::int64_t reached = 0;
    for (std::int64_t place = 1; place < places; ++place) {
        const auto bytes = readPart(source, source.size() / places * place, piece);
        FrameSearch search(bytes, stream);
        const Frame *frame = search.lastLedTo();
        if (frame == nullptr)
            continue;
        if (frame->first < reached || frame->first > samples)
            return false;
        reached = frame->first;
    }
    return true;
}

class WithTotal final : public ByteSource {
public:
    WithTotal(std::unique_ptr<ByteSource> source, std::int64_t samples)
        : source_(std::move(source)) {
        source_->read(totalAt, total_);
        total_[0] = static_cast<std::uint8_t>((total_[0] & 0xF0) | (samples >> 32 & 15));
        for (std::size_t i = 1; i < totalBytes; ++i)
            total_[i] = static_cast<std::uint8_t>(samples >> (8 * (totalBytes - 1 - i)));
    }
    std::int64_t size() const override { return source_->size(); }
    std::size_t read(std::int64_t offset, std::span<std::uint8_t> out) const override {
        const std::size_t got = source_->read(offset, out);
        for (std::size_t i = 0; i < totalBytes; ++i) {
            const std::int64_t place = totalAt + static_cast<std::int64_t>(i) - offset;
            if (place >= 0 && place < static_cast<std::int64_t>(got))
                out[static_cast<std::size_t>(place)] = total_[i];
        }
        return got;
    }

private:
    std::unique_ptr<ByteSource> source_;
    std::array<std::uint8_t, totalBytes> total_{};
};

} // namespace

std::optional<std::int64_t> flacSamplesPresent(const ByteSource &source) {
    const auto stream = readStream(source);
    if (!stream || stream->block == 0)
        return std::nullopt;
    const auto samples = samplesUpTo(source, *stream, endBeforeTags(source));
    if (samples && *samples != stream->total && !leadsTo(source, *stream, *samples))
        return std::nullopt;
    return samples;
}

bool flacIsOnePiece(const ByteSource &source) {
    const auto stream = readStream(source);
    if (!stream)
        return true;
    const std::int64_t end = endBeforeTags(source);
    const std::int64_t start = std::min(flacSoundStart(source, 0), end);
    const auto window = static_cast<std::int64_t>(longestFrame(*stream));
    const auto tail =
        readPart(source, std::max(end - window, start), std::min(window, end - start));
    bool isAtTotal = false;
    for (auto frame = frameFrom(tail, 0, *stream); frame && !isAtTotal;
         frame = frameFrom(tail, frame->at + 1, *stream))
        isAtTotal = frame->end() == stream->total;
    std::int64_t reached = -1;
    for (const double place : placesToLookAt) {
        const auto at = static_cast<std::int64_t>(place * static_cast<double>(end - start));
        const auto bytes = readPart(source, start + at, window);
        const auto frame = frameFrom(bytes, 0, *stream);
        // Of a short file all places may lie in one frame.
        if (!isAtTotal || !frame || frame->first < reached || frame->end() > stream->total)
            return false;
        reached = frame->first + (end - start > 16 * window ? 1 : 0);
    }
    return isAtTotal;
}

std::int64_t flacSoundStart(const ByteSource &source, std::int64_t start) {
    constexpr int mostBlocks = 1000;
    std::int64_t at = start + 4;
    std::array<std::uint8_t, 4> head{};
    for (int blocks = 0; blocks < mostBlocks && source.read(at, head) == head.size(); ++blocks) {
        at += std::int64_t{4} + (head[1] << 16 | head[2] << 8 | head[3]);
        if ((head[0] & 0x80) != 0)
            break;
    }
    return std::min(at, source.size());
}

std::unique_ptr<ByteSource> withFlacTotal(std::unique_ptr<ByteSource> source,
                                          std::int64_t samples) {
    return std::make_unique<WithTotal>(std::move(source), samples);
}

std::int64_t flacTotal(const ByteSource &source) {
    const auto stream = readHead(source);
    return stream ? stream->total : 0;
}

} // namespace velmora::platform::sound
