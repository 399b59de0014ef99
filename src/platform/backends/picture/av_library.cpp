#include "platform/backends/picture/av_library.h"

#include <string>

namespace velmora::platform::picture {

namespace {

// Structures are laid out as in the major version built against, so no other will do.
std::string versioned(const std::string &name, int major) {
    return name + ".so." + std::to_string(major);
}

} // namespace

AvLibrary::AvLibrary()
    : util_(versioned("libavutil", LIBAVUTIL_VERSION_MAJOR)),
      codec_(versioned("libavcodec", LIBAVCODEC_VERSION_MAJOR)),
      format_(versioned("libavformat", LIBAVFORMAT_VERSION_MAJOR)) {}

bool AvLibrary::findAll() {
    return format_.find("avformat_alloc_context", allocContext) &&
           format_.find("avformat_open_input", openInput) &&
           format_.find("avformat_close_input", closeInput) &&
           format_.find("avformat_find_stream_info", findStreamInfo) &&
           format_.find("avformat_seek_file", seekFile) &&
           format_.find("av_read_frame", readFrame) &&
           codec_.find("av_packet_alloc", packetAlloc) &&
           codec_.find("av_packet_unref", packetUnref) &&
           codec_.find("av_packet_free", packetFree) && util_.find("av_dict_set", dictSet) &&
           util_.find("av_dict_free", dictFree);
}

std::shared_ptr<const AvLibrary> AvLibrary::load() {
    std::shared_ptr<AvLibrary> library(new AvLibrary);
    return library->findAll() ? library : nullptr;
}

} // namespace velmora::platform::picture
