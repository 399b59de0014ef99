#pragma once

// What the interpreter wants to know of a file before a device opens it.

#include <string>
#include <string_view>

namespace velmora::platform::media {

// Whether the path leads, after links, to a regular file. A pipe, a folder, a device or nothing
// gives false at once: none of them is ever opened, so none can block.
bool isRegularFile(const std::string &path);

// The first bytes of a file behind an ID3v2 tag, at most `limit` of them; empty when unreadable.
std::string beginningOf(const std::string &path, std::size_t limit = 4096);

struct MediumFile {
    bool isRegular = false;
    std::string beginning;
};
MediumFile lookAtMedium(const std::string &path);

// Whether a file that begins so is to be shown to the picture device first: a container that may
// hold pictures, or a sound form that only the general engine reads. It is a matter of order alone;
// the other device is asked next. Without it a reader of MPEG sound that looks for a frame further
// on may take the sound out of a film.
bool belongsToPictureDevice(std::string_view beginning);

} // namespace velmora::platform::media
