#pragma once

// Decodes frames of MPEG audio that somebody else has found.

#include "platform/backends/sound/readers/library_tables.h"
#include "platform/backends/sound/readers/mpeg_frame.h"

#include <cstdint>
#include <memory>
#include <span>

namespace velmora::platform::sound {

class MpegDecoder {
public:
    explicit MpegDecoder(std::shared_ptr<const Mpg123Table> library)
        : library_(std::move(library)) {}
    ~MpegDecoder();
    MpegDecoder(const MpegDecoder &) = delete;
    MpegDecoder &operator=(const MpegDecoder &) = delete;

    // Begins anew, with frames of this form, at their own rate and with so many channels (1 or 2),
    // whatever they have themselves. `freeSize`: in free format, the size of a frame without
    // padding. False: the library refuses.
    bool begin(const MpegFrame &form, int freeSize, int channels);

    // The interleaved samples of one whole frame; they last until the next call. Empty when the
    // frame cannot be decoded.
    std::span<const float> decode(std::span<const std::uint8_t> frame);

private:
    std::shared_ptr<const Mpg123Table> library_;
    mpg123_handle *handle_ = nullptr;
};

} // namespace velmora::platform::sound
