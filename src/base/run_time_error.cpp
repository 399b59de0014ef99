#include "base/run_time_error.h"

#include "base/text.h"

#include <cstdio>
#include <cstdlib>

namespace velmora {

namespace {

std::u16string describe(ErrorNumber number, std::u16string description) {
    return description.empty() ? defaultDescription(number) : std::move(description);
}

} // namespace

RunTimeError::RunTimeError(ErrorNumber number, std::u16string description, SourcePlace raisedAt)
    : std::runtime_error(toUtf8(describe(number, description))), number_(number),
      description_(describe(number, std::move(description))), raisedAt_(raisedAt) {}

void noteSwallowed(const RunTimeError &error, SourcePlace droppedAt) noexcept {
    if constexpr (VELMORA_DEVELOPMENT) {
        if (std::getenv("VELMORA_SWALLOWED") != nullptr) {
            std::fprintf(stderr, "swallowed: %d %s, raised at %s:%d, dropped at %s:%d\n",
                         static_cast<int>(error.number()), error.what(), error.raisedAt().file,
                         error.raisedAt().line, droppedAt.file, droppedAt.line);
        }
    }
}

std::u16string defaultDescription(ErrorNumber number) {
    switch (number) {
    case ErrorNumber::InvalidCall:
        return u"Invalid procedure call or argument";
    case ErrorNumber::Overflow:
        return u"Overflow";
    case ErrorNumber::SubscriptOutOfRange:
        return u"Subscript out of range";
    case ErrorNumber::DivisionByZero:
        return u"Division by zero";
    case ErrorNumber::TypeMismatch:
        return u"Type mismatch";
    case ErrorNumber::FileNotFound:
        return u"File not found";
    case ErrorNumber::DeviceIo:
        return u"Device I/O error";
    case ErrorNumber::FileExists:
        return u"File already exists";
    case ErrorNumber::DiskFull:
        return u"Disk full";
    case ErrorNumber::PermissionDenied:
        return u"Permission denied";
    case ErrorNumber::PathNotFound:
        return u"Path not found";
    case ErrorNumber::InvalidPropertyValue:
        return u"Invalid property value";
    case ErrorNumber::General:
        return u"Automation error";
    }
    return u"Application-defined or object-defined error";
}

void raise(ErrorNumber number, SourcePlace raisedAt) {
    throw RunTimeError(number, defaultDescription(number), raisedAt);
}

} // namespace velmora
