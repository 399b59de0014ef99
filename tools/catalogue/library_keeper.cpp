#include "catalogue/library_keeper.h"

#include <cstdio>
#include <exception>
#include <utility>

namespace velmora::catalogue {

namespace {

constexpr std::chrono::seconds lookEvery{2};
constexpr std::chrono::seconds longestForAFile{2};

} // namespace

LibraryKeeper::LibraryKeeper(Catalogue &catalogue, std::vector<std::string> tagCommand,
                             std::string knownPath, KeeperWords words)
    : catalogue_(catalogue), words_(std::move(words)),
      tags_(std::move(tagCommand), longestForAFile, [this] { return !ends_; }),
      known_(std::move(knownPath)), reader_(catalogue.folder(), tags_, &known_),
      thread_([this] { keep(); }) {}

LibraryKeeper::~LibraryKeeper() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

bool LibraryKeeper::hasRead(std::chrono::milliseconds within) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, within, [this] { return read_.load(); });
}

void LibraryKeeper::read() {
    ReadingWatch watch;
    watch.goesOn = [this] { return !ends_; };
    watch.part = [this](std::shared_ptr<const Library> part) { catalogue_.show(std::move(part)); };
    if (!read_)
        watch.progress = words_.progress;
    const std::shared_ptr<const Library> library = reader_.read(watch);
    if (ends_)
        return;
    catalogue_.show(library);
    const bool first = !read_.exchange(true);
    const bool cut = reader_.cut() && !std::exchange(cutTold_, true);
    if (first || cut)
        words_.read(*library, reader_.cut());
}

// What went wrong once (no memory, say) is tried again at the next look, with the old library in
// its place until then.
void LibraryKeeper::keep() {
    std::unique_lock lock(mutex_);
    while (!ends_) {
        lock.unlock();
        try {
            if (!read_ || reader_.isDue())
                read();
        } catch (const std::exception &error) {
            std::fprintf(stderr, "velmora-catalogue: the folder could not be read: %s\n",
                         error.what());
        }
        lock.lock();
        changed_.notify_all();
        changed_.wait_for(lock, lookEvery, [this] { return ends_.load(); });
    }
}

} // namespace velmora::catalogue
