#include "platform/backends/picture/medium_length.h"

#include "base/within_time.h"
#include "platform/backends/picture/av_library.h"
#include "platform/backends/picture/media_formats.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

namespace velmora::platform::picture {

namespace {

using namespace std::string_view_literals;
using Clock = std::chrono::steady_clock;

constexpr double timeBase = 1.0 / AV_TIME_BASE;
// A tail this long holds packets of every stream of an ordinary file.
constexpr double tailSeconds = 3.0;

bool names(std::string_view list, std::string_view name) {
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(','), list.size());
        if (list.substr(0, length) == name)
            return true;
        list.remove_prefix(std::min(length + 1, list.size()));
    }
    return false;
}

// A file open for reading its packets.
class PacketReader {
public:
    PacketReader(std::shared_ptr<const AvLibrary> library, Clock::time_point end)
        : library_(std::move(library)), end_(end) {}

    ~PacketReader() {
        if (packet_ != nullptr)
            library_->av_packet_free(&packet_);
        library_->avformat_close_input(&context_);
    }
    PacketReader(const PacketReader &) = delete;
    PacketReader &operator=(const PacketReader &) = delete;

    bool open(const std::string &path) {
        context_ = library_->avformat_alloc_context();
        packet_ = library_->av_packet_alloc();
        if (context_ == nullptr || packet_ == nullptr)
            return false;
        context_->interrupt_callback = {&PacketReader::isLate, this};
        std::error_code unknown;
        size_ = static_cast<std::int64_t>(std::filesystem::file_size(path, unknown));
        AVDictionary *options = nullptr;
        library_->av_dict_set(&options, "format_whitelist", mediaFormats, 0);
        library_->av_dict_set(&options, "protocol_whitelist", "file", 0);
        const int opened =
            library_->avformat_open_input(&context_, ("file:" + path).c_str(), nullptr, &options);
        library_->av_dict_free(&options);
        return opened >= 0 && library_->avformat_find_stream_info(context_, nullptr) >= 0;
    }

    void seek(double seconds) {
        const auto target = static_cast<std::int64_t>((start() + seconds) / timeBase);
        library_->avformat_seek_file(context_, -1, INT64_MIN, target, target, 0);
    }

    double start() const {
        return context_->start_time == AV_NOPTS_VALUE
                   ? 0.0
                   : static_cast<double>(context_->start_time) * timeBase;
    }

    // The latest end of a packet, in seconds from the start. Raw video has no times: its packets
    // are added up. Absent when there is nothing to play.
    std::optional<double> lastEnd() {
        std::vector<double> sums(context_->nb_streams, 0.0);
        std::optional<double> last;
        bool isWhole = true;
        while (isWhole && library_->av_read_frame(context_, packet_) >= 0) {
            if (isPlayed() && static_cast<std::size_t>(packet_->stream_index) < sums.size()) {
                double &sum = sums[static_cast<std::size_t>(packet_->stream_index)];
                sum += inSeconds(packet_->duration);
                const double end = endOfPacket().value_or(sum);
                last = std::max(last.value_or(end), end);
            }
            library_->av_packet_unref(packet_);
            isWhole = isLate(this) == 0;
        }
        return last && !isWhole ? reckoned(*last) : last;
    }

private:
    static int isLate(void *reader) {
        return Clock::now() >= static_cast<PacketReader *>(reader)->end_ ? 1 : 0;
    }

    bool isPlayed() const {
        const AVStream &stream = *context_->streams[packet_->stream_index];
        const AVMediaType kind = stream.codecpar->codec_type;
        const bool isCover = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        return !isCover && (kind == AVMEDIA_TYPE_AUDIO || kind == AVMEDIA_TYPE_VIDEO);
    }

    double inSeconds(std::int64_t units) const {
        return static_cast<double>(units) *
               av_q2d(context_->streams[packet_->stream_index]->time_base);
    }

    std::optional<double> endOfPacket() const {
        const std::int64_t begin = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : packet_->dts;
        if (begin == AV_NOPTS_VALUE)
            return std::nullopt;
        return inSeconds(begin) + inSeconds(packet_->duration) - start();
    }

    // The whole from the part read, by their bytes.
    double reckoned(double seconds) const {
        const AVIOContext *file = context_->pb;
        if (file == nullptr || file->pos <= 0 || file->pos >= size_)
            return seconds;
        return seconds * static_cast<double>(size_) / static_cast<double>(file->pos);
    }

    std::shared_ptr<const AvLibrary> library_;
    Clock::time_point end_;
    AVFormatContext *context_ = nullptr;
    AVPacket *packet_ = nullptr;
    std::int64_t size_ = 0;
};

std::optional<double> scan(const std::string &path, LengthSource source,
                           std::optional<double> headerSeconds, std::chrono::milliseconds limit) {
    const auto library = AvLibrary::load();
    if (library == nullptr)
        return headerSeconds;
    PacketReader reader(library, Clock::now() + limit);
    if (!reader.open(path))
        return headerSeconds;
    if (source == LengthSource::Tail && headerSeconds && *headerSeconds > tailSeconds)
        reader.seek(*headerSeconds - tailSeconds);
    const auto end = reader.lastEnd();
    return end && *end > 0.0 ? end : headerSeconds;
}

} // namespace

LengthSource lengthSource(std::string_view format, bool headerSays) {
    // Their headers or their last pages have the length to the sample or the packet.
    constexpr std::array exact{
        "mov"sv,  "matroska"sv, "webm"sv, "avi"sv, "flv"sv, "wav"sv, "tta"sv,  "ape"sv,    "wv"sv,
        "flac"sv, "aiff"sv,     "caf"sv,  "w64"sv, "au"sv,  "ogg"sv, "mpeg"sv, "mpegts"sv, "tak"sv,
        "mpc8"sv, "mpc"sv,      "dsf"sv,  "voc"sv, "nut"sv, "mxf"sv, "ivf"sv};
    if (!headerSays)
        return LengthSource::Scan;
    const auto isNamed = [&](std::string_view known) { return names(format, known); };
    if (std::any_of(exact.begin(), exact.end(), isNamed))
        return LengthSource::Header;
    // These count the time before the first packet is due, and round up.
    return names(format, "asf") || names(format, "rm") ? LengthSource::Tail : LengthSource::Scan;
}

std::optional<double> measureLength(const std::string &path, LengthSource source,
                                    std::optional<double> headerSeconds,
                                    std::chrono::milliseconds limit) {
    if (source == LengthSource::Header)
        return headerSeconds;
    // It ends by itself in time, but for a call to a disk that does not come back.
    constexpr std::chrono::milliseconds slack{500};
    const auto length =
        withinTime(limit + slack, [=] { return scan(path, source, headerSeconds, limit); });
    return length.value_or(std::nullopt);
}

} // namespace velmora::platform::picture
