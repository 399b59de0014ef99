#pragma once

// The copy of one file into a folder, piece by piece, so that whoever asked for it can show how far
// it is and end it between two pieces.

#include "base/run_time_error.h"
#include "platform/backends/linux/draft.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

// Destroyed before `finish` it leaves nothing behind. Every operation raises RunTimeError.
class FileCopy {
public:
    // Opens the file. Raises for what is no regular file.
    FileCopy(const std::string &from, const std::string &folder, FileCalls calls = {});

    // Whether something lies where the copy is to go, under the file's own name: a link counts,
    // wherever it leads. Raises for a folder, and "file exists" for the file itself.
    bool isTaken() const;

    // Makes the new file, after what an earlier copy into that folder left that was cut short.
    void begin();
    // False when there is nothing left to copy.
    bool copyPiece();
    // Of 1.0; 0 for an empty file.
    double share() const noexcept;

    // Gives the copy the file's mode and time stamps, as far as its folder's file system lets it,
    // waits until it is on the disk and puts it in its place: over what lies there, or only where
    // nothing does. Else "file exists" is raised, and `finish` may be called once more.
    void finish(bool replacing);

private:
    std::string folder_;
    std::string target_;
    FileCalls calls_;
    Descriptor source_;
    struct ::stat about_ {};
    std::optional<Draft> draft_;
    std::vector<char> piece_;
    std::int64_t copied_ = 0;
    bool isComplete_ = false;
};

enum class CopyOutcome { Done, Cancelled, Failed };

// What a copy asks and shows on its way.
struct CopyTalk {
    std::function<bool()> mayReplace;            // something has the copy's name
    std::function<bool(FileCopy &copy)> copyAll; // piece by piece; false when it is to end
    // `concerned`: what the error is about.
    std::function<void(std::u16string_view concerned, const RunTimeError &error)> tellError;
};

// Copies `source` into `folder` under its own name. Asks before it overwrites, and once more where
// something came meanwhile.
CopyOutcome copyIntoFolder(std::u16string_view source, std::u16string_view folder,
                           const CopyTalk &talk, const FileCalls &calls = {});

} // namespace velmora::platform
