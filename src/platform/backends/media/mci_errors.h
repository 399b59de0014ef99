#pragma once

// Error numbers of the command interpreter. They are the numbers that the engine of the platform
// on which the program was designed gives for the same faults, so that a log reads familiar; the
// program itself only asks whether the number is 0.

#include <cstdint>

namespace velmora::platform::media {

enum class MciError : std::uint32_t {
    None = 0,
    UnrecognizedKeyword = 259, // a word stands where the command has another
    UnrecognizedCommand = 261, // the first word is no command
    DeviceRefused = 262,       // the open device could not do it
    InvalidDeviceName = 263,   // nothing is open under that alias; an unknown device type
    DeviceOpen = 265,          // another alias is open: one device is open at a time
    MissingCommand = 267,      // an empty text
    BadInteger = 270,          // no whole number of 32 bits where one is needed
    MissingParameter = 273,    // the text ends too early
    FileNotFound = 275,        // missing, not a regular file, or a path that decodes to no name
    CannotLoad = 277,          // no device plays what the file holds
    OutOfRange = 282,          // a volume or a position outside its range
    DuplicateAlias = 289,      // the alias is open already
    NoWindow = 346,            // "put" without a picture, or with a place that no window can have
};

} // namespace velmora::platform::media
