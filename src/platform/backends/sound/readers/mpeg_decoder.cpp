#include "platform/backends/sound/readers/mpeg_decoder.h"

namespace velmora::platform::sound {

MpegDecoder::~MpegDecoder() {
    if (handle_)
        library_->mpg123_delete(handle_);
}

bool MpegDecoder::begin(const MpegFrame &form, int freeSize, int channels) {
    const auto &lib = *library_;
    if (!handle_) {
        handle_ = lib.mpg123_new(nullptr, nullptr);
        if (!handle_)
            return false;
        // Every frame is sound and follows the last: there is nothing to look for.
        const long flags =
            MPG123_QUIET | MPG123_FORCE_FLOAT | MPG123_IGNORE_INFOFRAME | MPG123_NO_READAHEAD;
        lib.mpg123_param(handle_, MPG123_ADD_FLAGS, flags, 0);
        lib.mpg123_param(handle_, MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0);
    }
    constexpr int headerBytes = 4; // which it does not count
    lib.mpg123_param(handle_, MPG123_FREEFORMAT_SIZE, freeSize > 0 ? freeSize - headerBytes : -1,
                     0);
    lib.mpg123_format_none(handle_);
    return lib.mpg123_format(handle_, form.rate, channels == 1 ? MPG123_MONO : MPG123_STEREO,
                             MPG123_ENC_FLOAT_32) == MPG123_OK &&
           lib.mpg123_open_feed(handle_) == MPG123_OK;
}

std::span<const float> MpegDecoder::decode(std::span<const std::uint8_t> frame) {
    const auto &lib = *library_;
    if (lib.mpg123_feed(handle_, frame.data(), frame.size()) != MPG123_OK)
        return {};
    off_t number = 0;
    unsigned char *audio = nullptr;
    std::size_t bytes = 0;
    int result = lib.mpg123_decode_frame(handle_, &number, &audio, &bytes);
    if (result == MPG123_NEW_FORMAT)
        result = lib.mpg123_decode_frame(handle_, &number, &audio, &bytes);
    if (result != MPG123_OK || audio == nullptr)
        return {};
    return {reinterpret_cast<const float *>(audio), bytes / sizeof(float)};
}

} // namespace velmora::platform::sound
