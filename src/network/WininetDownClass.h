#pragma once

// What the download needs beside the transport: sizes as people read them, and the folders of a
// target.

#include <string>

namespace velmora {

namespace platform {
class FileSystem;
class Profiles;
} // namespace platform

// "1.30 KB". The empty text for a size that does not fit into 32 bits.
std::u16string formatByteSize(platform::Profiles &profiles, double size);

// Makes the folders of a path. A dot anywhere in the path means that its last piece is a file; a
// path without one is folders to its end. The path loses NULs, and doubled separators become
// single. False, and nothing is made, for a path that is not absolute (a drive, or "/" in front);
// true otherwise, whether or not the folders could be made.
bool makeDirectoryChain(platform::FileSystem &files, std::u16string &path);

} // namespace velmora
