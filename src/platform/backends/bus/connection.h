#pragma once

// One connection to the session bus, served by the program's loop: no thread, no timer, nothing
// that waits. A bus that is not there, goes or never answers leaves it closed or quiet.

#include "platform/backends/bus/bus_library.h"
#include "platform/backends/bus/desktop_bus.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::bus {

// A call's answer, or the want of one.
using Answered = std::function<void(sd_bus_message *answer, bool failed)>;

class Connection {
public:
    explicit Connection(WatchDescriptor watch);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Called for each connection that is made, to put the objects and names on it; and when it is
    // lost.
    std::function<void()> onOpened;
    std::function<void()> onLost;

    // Tries once where there is none. Whether there is one now.
    bool open();
    bool isOpen() const { return bus_ != nullptr; }
    const BusLibrary &library() const { return *library_; }
    sd_bus *bus() const { return bus_; }

    // Whether so much waits to be sent that the other end no longer reads.
    bool isStuck() const;

    // Does the work when the message at hand has been handled: the bus can be asked nothing while
    // it calls us, and most of what is asked of the player handles events.
    void later(std::function<void()> work) { owed_.push_back(std::move(work)); }

    // Sends, and lets the loop see to what could not be sent at once.
    void flush();

    // A call whose answer comes later, or never.
    struct Call {
        const char *destination;
        const char *path;
        const char *interface;
        const char *member;
    };
    // False where it could not be sent; `answered` is then not called.
    bool call(const Call &call, const std::function<int(sd_bus_message *)> &fill,
              Answered answered);

private:
    static int onAnswer(sd_bus_message *message, void *call, sd_bus_error *error);
    struct Pending;
    void serve();
    void watchAgain();
    void close();
    void lose();

    WatchDescriptor watch_;
    std::shared_ptr<const BusLibrary> library_;
    bool looked_ = false; // for the library
    sd_bus *bus_ = nullptr;
    int descriptor_ = -1;
    std::function<void(bool writing)> watching_;
    std::deque<std::function<void()>> owed_;
    std::vector<std::unique_ptr<Pending>> pending_;
};

} // namespace velmora::platform::bus
