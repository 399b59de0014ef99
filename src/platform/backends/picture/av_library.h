#pragma once

// The functions of libavformat, and of what it stands on, that the length scan uses. The library is
// the one that the engine itself works with.

#include "base/loaded_library.h"

#include <memory>
#include <string>

extern "C" {
#include <libavformat/avformat.h>
}

namespace velmora::platform::picture {

#define VELMORA_AVFORMAT_FUNCTIONS(F)                                                              \
    F(avformat_alloc_context)                                                                      \
    F(avformat_open_input)                                                                         \
    F(avformat_close_input)                                                                        \
    F(avformat_find_stream_info)                                                                   \
    F(avformat_seek_file)                                                                          \
    F(av_read_frame)

#define VELMORA_AVCODEC_FUNCTIONS(F)                                                               \
    F(av_packet_alloc)                                                                             \
    F(av_packet_unref)                                                                             \
    F(av_packet_free)

#define VELMORA_AVUTIL_FUNCTIONS(F)                                                                \
    F(av_dict_set)                                                                                 \
    F(av_dict_free)

struct AvLibrary {
    // Null where a library of the version built against is not installed.
    static std::shared_ptr<const AvLibrary> load() {
        const auto table = std::make_shared<const AvLibrary>();
        return table->complete ? table : nullptr;
    }

    AvLibrary() {
        // Structures are laid out as in the major version built against, so no other will do.
        const auto versioned = [](const std::string &name, int major) {
            return LoadedLibrary(name + ".so." + std::to_string(major));
        };
        LoadedLibrary library = versioned("libavutil", LIBAVUTIL_VERSION_MAJOR);
        VELMORA_AVUTIL_FUNCTIONS(VELMORA_TABLE_BIND)
        library = versioned("libavcodec", LIBAVCODEC_VERSION_MAJOR);
        VELMORA_AVCODEC_FUNCTIONS(VELMORA_TABLE_BIND)
        library = versioned("libavformat", LIBAVFORMAT_VERSION_MAJOR);
        VELMORA_AVFORMAT_FUNCTIONS(VELMORA_TABLE_BIND)
    }

    bool complete = true;
    VELMORA_AVFORMAT_FUNCTIONS(VELMORA_TABLE_MEMBER)
    VELMORA_AVCODEC_FUNCTIONS(VELMORA_TABLE_MEMBER)
    VELMORA_AVUTIL_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

} // namespace velmora::platform::picture
