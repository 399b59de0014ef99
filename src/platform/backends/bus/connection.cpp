#include "platform/backends/bus/connection.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace velmora::platform::bus {

namespace {

// Signals to a bus that does not read them; calls of ours that it does not answer.
constexpr std::uint64_t mostUnsent = 64;
constexpr std::size_t mostPending = 64;

} // namespace

struct Connection::Pending {
    Connection *connection;
    sd_bus_slot *slot;
    Answered answered;
};

Connection::Connection(WatchDescriptor watch) : watch_(std::move(watch)) {}

Connection::~Connection() { close(); }

bool Connection::open() {
    if (bus_ != nullptr)
        return true;
    if (!std::exchange(looked_, true))
        library_ = BusLibrary::load();
    if (library_ == nullptr || library_->openUser(&bus_) < 0) {
        bus_ = nullptr;
        return false;
    }
    onOpened();
    flush();
    return bus_ != nullptr;
}

bool Connection::isStuck() const {
    std::uint64_t unsent = 0;
    return bus_ != nullptr && library_->queuedWrites(bus_, &unsent) >= 0 && unsent > mostUnsent;
}

// Reading goes first: a connection takes several steps to come up.
void Connection::serve() {
    while (bus_ != nullptr) {
        const int done = library_->process(bus_, nullptr);
        if (bus_ == nullptr)
            return;
        if (done < 0 || library_->isOpen(bus_) <= 0) {
            lose();
            break;
        }
        // The work may handle events, and in them this very function.
        while (!owed_.empty()) {
            const std::function<void()> work = std::move(owed_.front());
            owed_.pop_front();
            work();
        }
        if (done == 0)
            break;
    }
    watchAgain();
}

void Connection::flush() {
    if (bus_ != nullptr)
        watchAgain();
}

void Connection::watchAgain() {
    if (bus_ == nullptr)
        return;
    const int descriptor = library_->getFd(bus_);
    const int events = library_->getEvents(bus_);
    if (descriptor < 0 || events < 0) {
        lose();
        return;
    }
    if (descriptor != descriptor_) {
        descriptor_ = descriptor;
        watching_ = watch_(descriptor, [this] { serve(); });
    }
    watching_((events & POLLOUT) != 0);
}

void Connection::lose() {
    close();
    onLost();
}

void Connection::close() {
    watching_ = nullptr;
    descriptor_ = -1;
    for (const auto &one : pending_)
        library_->slotUnref(one->slot);
    pending_.clear();
    if (bus_ != nullptr)
        library_->closeUnref(std::exchange(bus_, nullptr));
}

int Connection::onAnswer(sd_bus_message *message, void *call, sd_bus_error * /*error*/) {
    auto *pending = static_cast<Pending *>(call);
    Connection &self = *pending->connection;
    const auto found = std::find_if(self.pending_.begin(), self.pending_.end(),
                                    [pending](const auto &one) { return one.get() == pending; });
    const std::unique_ptr<Pending> mine = std::move(*found);
    self.pending_.erase(found);
    self.library_->slotUnref(mine->slot);
    mine->answered(message, self.library_->isMethodError(message, nullptr) > 0);
    return 1;
}

bool Connection::call(const Call &call, const std::function<int(sd_bus_message *)> &fill,
                      Answered answered) {
    sd_bus_message *message = nullptr;
    if (bus_ == nullptr || pending_.size() >= mostPending ||
        library_->newMethodCall(bus_, &message, call.destination, call.path, call.interface,
                                call.member) < 0)
        return false;
    auto pending = std::make_unique<Pending>(Pending{this, nullptr, std::move(answered)});
    const bool sent = fill(message) >= 0 && library_->callAsync(bus_, &pending->slot, message,
                                                                onAnswer, pending.get(), 0) >= 0;
    if (sent)
        pending_.push_back(std::move(pending));
    library_->messageUnref(message);
    flush();
    return sent;
}

} // namespace velmora::platform::bus
