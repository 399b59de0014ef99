#include "platform/backends/sound/readers/flac_length.h"
#include "platform/backends/sound/readers/ogg_length.h"
#include "platform/backends/sound/readers/reader.h"

#include <algorithm>

namespace velmora::platform::sound {

namespace {

sf_count_t fileSize(void *cursor) { return static_cast<ByteCursor *>(cursor)->source->size(); }

sf_count_t seekBytes(sf_count_t offset, int whence, void *cursor) {
    return static_cast<ByteCursor *>(cursor)->seek(offset, whence);
}

sf_count_t readBytes(void *out, sf_count_t count, void *cursor) {
    return static_cast<sf_count_t>(
        static_cast<ByteCursor *>(cursor)->read(out, static_cast<std::size_t>(count)));
}

sf_count_t writeBytes(const void *, sf_count_t, void *) { return 0; }

sf_count_t tellBytes(void *cursor) { return static_cast<ByteCursor *>(cursor)->position; }

class SndfileReader final : public Reader {
public:
    SndfileReader(std::unique_ptr<ByteSource> source, std::shared_ptr<const SndfileTable> library)
        : library_(std::move(library)), source_(std::move(source)) {
        cursor_.source = source_.get();
    }

    ~SndfileReader() override {
        if (file_)
            library_->sf_close(file_);
    }

    bool open() {
        SF_VIRTUAL_IO io{fileSize, seekBytes, readBytes, writeBytes, tellBytes};
        file_ = library_->sf_open_virtual(&io, SFM_READ, &info_, &cursor_);
        if (!file_ || info_.channels < 1 || info_.channels > maxChannels ||
            info_.samplerate < minRate || info_.samplerate > maxRate)
            return false;
        // Of a few forms the library reads each sample once only. Another device plays them.
        if (info_.seekable == 0)
            return false;
        correctLength();
        return info_.frames > 0 && info_.frames < SF_COUNT_MAX;
    }

    int rate() const override { return info_.samplerate; }
    int channels() const override { return info_.channels; }
    std::int64_t frames() const override { return info_.frames; }

    bool seek(std::int64_t frame) override {
        position_ = frame;
        silent_ = 0;
        return frame >= info_.frames || library_->sf_seek(file_, frame, SEEK_SET) == frame;
    }

    std::size_t read(float *out, std::size_t frameCount) override {
        const auto left = static_cast<std::size_t>(std::max<std::int64_t>(frames() - position_, 0));
        const auto wanted = static_cast<sf_count_t>(std::min(frameCount, left));
        if (wanted == 0)
            return 0;
        sf_count_t got = silent_ > 0 ? 0 : library_->sf_readf_float(file_, out, wanted);
        if (got <= 0 && (silent_ > 0 || passDamage())) {
            got = std::min(wanted, silent_);
            silent_ -= got;
            std::fill_n(out, got * info_.channels, 0.0F);
        }
        got = std::max<sf_count_t>(got, 0);
        position_ += got;
        return static_cast<std::size_t>(got);
    }

private:
    // The library gives up at what it cannot decode. Behind that the sound goes on at its time:
    // what lies between is silent.
    bool passDamage() {
        for (sf_count_t step = 2048; step <= info_.frames - position_; step *= 2) {
            const sf_count_t behind = position_ + step;
            if (!reopen())
                return false;
            float frame[maxChannels];
            if (library_->sf_seek(file_, behind, SEEK_SET) == behind &&
                library_->sf_readf_float(file_, frame, 1) == 1 &&
                library_->sf_seek(file_, behind, SEEK_SET) == behind) {
                silent_ = step;
                return true;
            }
        }
        return false;
    }

    // After a failure it no longer seeks.
    bool reopen() {
        SF_VIRTUAL_IO io{fileSize, seekBytes, readBytes, writeBytes, tellBytes};
        SF_INFO same{};
        library_->sf_close(file_);
        cursor_.position = 0;
        file_ = library_->sf_open_virtual(&io, SFM_READ, &same, &cursor_);
        return file_ != nullptr && same.channels == info_.channels;
    }

    // A cut Ogg file does not know its length, and another may tell any.
    void correctLength() {
        if ((info_.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_OGG)
            return;
        constexpr int rateOfOpus = 48000; // whatever the rate that it is decoded at
        const bool isOpus = (info_.format & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS;
        if (const auto present = oggSamplesPresent(*source_))
            info_.frames = std::min<sf_count_t>(
                info_.frames, isOpus ? *present * info_.samplerate / rateOfOpus : *present);
    }

    std::shared_ptr<const SndfileTable> library_;
    std::unique_ptr<ByteSource> source_;
    ByteCursor cursor_;
    SNDFILE *file_ = nullptr;
    SF_INFO info_{};
    std::int64_t position_ = 0;
    sf_count_t silent_ = 0; // frames of damage that are still to come
};

} // namespace

std::unique_ptr<Reader> openSndfileReader(std::unique_ptr<ByteSource> source,
                                          std::shared_ptr<const SndfileTable> library) {
    if (!library)
        return nullptr;
    // A cut FLAC file claims its whole length, and one that was made on the fly none at all.
    if (const auto present = flacSamplesPresent(*source)) {
        if (*present == 0)
            return nullptr;
        if (*present != flacTotal(*source))
            source = withFlacTotal(std::move(source), *present);
    }
    auto reader = std::make_unique<SndfileReader>(std::move(source), std::move(library));
    return reader->open() ? std::move(reader) : nullptr;
}

} // namespace velmora::platform::sound
