#pragma once

// The one exception type of the program, and the two ways in which a routine may treat it.
//
// A routine either passes over failures statement by statement (`passOver`) or jumps on the first
// one to its own handler (an ordinary try/catch around its body). An error that reaches the border
// of an event handler ends that handler and nothing else; the forms do that catching (see
// platform/forms/control.h).

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

// A place in the sources: as a default argument, that of the caller. (The standard's own is not
// there for each of our compilers.)
struct SourcePlace {
    const char *file = "";
    int line = 0;
    static constexpr SourcePlace current(const char *file = __builtin_FILE(),
                                         int line = __builtin_LINE()) noexcept {
        return {file, line};
    }
};

// Numbers of the run-time errors that the program or its services raise. They are the numbers of
// the platform on which the program was designed, so that a trapped error keeps its meaning.
enum class ErrorNumber : int {
    InvalidCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    FileNotFound = 53,
    DeviceIo = 57,
    FileExists = 58,
    DiskFull = 61,
    PermissionDenied = 70,
    PathNotFound = 76,
    InvalidPropertyValue = 380,
    General = 440,
};

class RunTimeError : public std::runtime_error {
public:
    // `description` is what a message box shows; it is never empty.
    RunTimeError(ErrorNumber number, std::u16string description,
                 SourcePlace raisedAt = SourcePlace::current());

    ErrorNumber number() const noexcept { return number_; }
    const std::u16string &description() const noexcept { return description_; }
    const SourcePlace &raisedAt() const noexcept { return raisedAt_; }

private:
    ErrorNumber number_;
    std::u16string description_;
    SourcePlace raisedAt_;
};

// The description that the platform's designers gave to an error number, for errors that no
// service describes better ("Overflow", "Type mismatch").
std::u16string defaultDescription(ErrorNumber number);

[[noreturn]] void raise(ErrorNumber number, SourcePlace raisedAt = SourcePlace::current());

// For those who catch an error and go on as if nothing had been. In a build for development the
// environment variable VELMORA_SWALLOWED makes it a line on standard error, with the places where
// the error was raised and dropped; else nothing comes of it.
void noteSwallowed(const RunTimeError &error,
                   SourcePlace droppedAt = SourcePlace::current()) noexcept;

// Runs one statement and drops its failure. Returns whether it went through.
template <typename Statement>
bool passOver(Statement &&statement, SourcePlace droppedAt = SourcePlace::current()) {
    try {
        std::forward<Statement>(statement)();
        return true;
    } catch (const RunTimeError &error) {
        noteSwallowed(error, droppedAt);
        return false;
    }
}

} // namespace velmora
