#pragma once

// The functions of libavformat that the length scan uses, under their own names and types. The
// library is the one that the engine itself works with.

#include "platform/backends/picture/shared_library.h"

#include <memory>

extern "C" {
#include <libavformat/avformat.h>
}

namespace velmora::platform::picture {

struct AvLibrary {
    // Null where a library of the version built against is not installed.
    static std::shared_ptr<const AvLibrary> load();

    decltype(avformat_alloc_context) *allocContext = nullptr;
    decltype(avformat_open_input) *openInput = nullptr;
    decltype(avformat_close_input) *closeInput = nullptr;
    decltype(avformat_find_stream_info) *findStreamInfo = nullptr;
    decltype(avformat_seek_file) *seekFile = nullptr;
    decltype(av_read_frame) *readFrame = nullptr;
    decltype(av_packet_alloc) *packetAlloc = nullptr;
    decltype(av_packet_unref) *packetUnref = nullptr;
    decltype(av_packet_free) *packetFree = nullptr;
    decltype(av_dict_set) *dictSet = nullptr;
    decltype(av_dict_free) *dictFree = nullptr;

private:
    AvLibrary();
    bool findAll();

    SharedLibrary util_;
    SharedLibrary codec_;
    SharedLibrary format_;
};

} // namespace velmora::platform::picture
