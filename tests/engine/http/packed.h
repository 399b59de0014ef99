#pragma once

// Bodies in the gzip form.

#include <zlib.h>

#include <string>

namespace velmora::testing {

inline std::string packed(const std::string &text) {
    z_stream stream{};
    constexpr int gzipForm = 15 + 16;
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipForm, 8, Z_DEFAULT_STRATEGY);
    std::string result(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef *>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    return result;
}

} // namespace velmora::testing
