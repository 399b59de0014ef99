#include "platform/sound/mpeg_frame.h"
#include "platform/sound/reader.h"

#include <algorithm>
#include <cstdlib>
#include <sys/types.h>

namespace velmora::platform::sound {

namespace {

ssize_t readBytes(void *cursor, void *out, std::size_t count) {
    return static_cast<ssize_t>(static_cast<ByteCursor *>(cursor)->read(out, count));
}

off_t seekBytes(void *cursor, off_t offset, int whence) {
    return static_cast<off_t>(static_cast<ByteCursor *>(cursor)->seek(offset, whence));
}

class MpegReader final : public Reader {
public:
    MpegReader(std::unique_ptr<ByteSource> source, std::shared_ptr<const Mpg123Table> library)
        : library_(std::move(library)) {
        // Without the tags at the end, which the decoder would take for broken frames.
        const std::int64_t end = endBeforeTags(*source);
        source_ = std::make_unique<SourcePart>(std::move(source), 0, end);
        cursor_.source = source_.get();
    }

    ~MpegReader() override {
        if (handle_)
            library_->mpg123_delete(handle_);
    }

    bool open() {
        const auto &lib = *library_;
        handle_ = lib.mpg123_new(nullptr, nullptr);
        if (!handle_)
            return false;
        const long flags = MPG123_QUIET | MPG123_FORCE_FLOAT | MPG123_GAPLESS | MPG123_SKIP_ID3V2;
        lib.mpg123_param(handle_, MPG123_ADD_FLAGS, flags, 0);
        lib.mpg123_param(handle_, MPG123_RESYNC_LIMIT, 1 << 20, 0);
        long rate = 0;
        int encoding = 0;
        if (lib.mpg123_replace_reader_handle(handle_, readBytes, seekBytes, nullptr) != MPG123_OK ||
            lib.mpg123_open_handle(handle_, &cursor_) != MPG123_OK ||
            lib.mpg123_getformat(handle_, &rate, &channels_, &encoding) != MPG123_OK ||
            encoding != MPG123_ENC_FLOAT_32 || channels_ < 1 || channels_ > 2 || rate < minRate ||
            rate > maxRate)
            return false;
        rate_ = static_cast<int>(rate);
        // A frame may lean on bytes of many small frames ahead of it, so decoding begins that far
        // in front of a seek's target; else a quiet piece of low bit rate would begin silent.
        lib.mpg123_param(handle_, MPG123_PREFRAMES, rate_ < 32000 ? 100 : 20, 0);
        // A stream that changes its form on the way is turned into the form it began with.
        lib.mpg123_format_none(handle_);
        lib.mpg123_format(handle_, rate, channels_ == 1 ? MPG123_MONO : MPG123_STEREO,
                          MPG123_ENC_FLOAT_32);
        frames_ = measure();
        return frames_ > 0 && seek(0);
    }

    int rate() const override { return rate_; }
    int channels() const override { return channels_; }
    std::int64_t frames() const override { return frames_; }

    bool seek(std::int64_t frame) override {
        position_ = frame;
        return frame >= frames_ || library_->mpg123_seek(handle_, frame, SEEK_SET) == frame;
    }

    std::size_t read(float *out, std::size_t frameCount) override {
        const std::size_t frameBytes = sizeof(float) * static_cast<std::size_t>(channels_);
        const auto left = static_cast<std::size_t>(std::max<std::int64_t>(frames_ - position_, 0));
        const std::size_t wanted = std::min(frameCount, left) * frameBytes;
        std::size_t done = 0;
        while (done < wanted) {
            std::size_t got = 0;
            const int result = library_->mpg123_read(
                handle_, reinterpret_cast<unsigned char *>(out) + done, wanted - done, &got);
            done += got;
            if (result != MPG123_OK && result != MPG123_NEW_FORMAT)
                break;
            if (result == MPG123_OK && got == 0)
                break;
        }
        position_ += static_cast<std::int64_t>(done / frameBytes);
        return done / frameBytes;
    }

private:
    // The length that decoding will give. The header of the encoder is believed only where the
    // file is as long as it says: a file may be cut, or several joined.
    std::int64_t measure() {
        const auto header = readMpegSeekHeader(*source_, 0);
        if (!header) {
            if (const auto count = countMpegFrames(*source_, 0))
                return *count * firstFrameSamples();
        } else if (header->frames > 0 && header->bytes > 0 &&
                   std::abs(header->bytes - source_->size()) <= 2048) {
            return library_->mpg123_length(handle_);
        }
        if (library_->mpg123_scan(handle_) != MPG123_OK)
            return 0;
        return library_->mpg123_length(handle_);
    }

    std::int64_t firstFrameSamples() const {
        std::uint8_t bytes[4];
        const std::size_t got = source_->read(0, bytes);
        const auto frame = parseMpegFrame(std::span(bytes).first(got));
        return frame ? frame->samples : 0;
    }

    std::shared_ptr<const Mpg123Table> library_;
    std::unique_ptr<ByteSource> source_;
    ByteCursor cursor_;
    mpg123_handle *handle_ = nullptr;
    int rate_ = 0;
    int channels_ = 0;
    std::int64_t frames_ = 0;
    std::int64_t position_ = 0;
};

} // namespace

std::unique_ptr<Reader> openMpegReader(std::unique_ptr<ByteSource> source,
                                       std::shared_ptr<const Mpg123Table> library) {
    if (!library)
        return nullptr;
    auto reader = std::make_unique<MpegReader>(std::move(source), std::move(library));
    return reader->open() ? std::move(reader) : nullptr;
}

} // namespace velmora::platform::sound
