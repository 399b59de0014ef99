#pragma once

// Keeps a catalogue's library as its folder is, on a thread of its own: answers never wait for it.

#include "catalogue/catalogue.h"
#include "catalogue/known_tags.h"
#include "catalogue/library_reader.h"
#include "catalogue/tag_child.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velmora::catalogue {

// What the keeper tells, on its own thread.
struct KeeperWords {
    std::function<void(std::size_t done, std::size_t all)> progress = [](auto, auto) {};
    std::function<void(const Library &library, bool cut)> read = [](const auto &, auto) {};
};

class LibraryKeeper {
public:
    // `tagCommand` as for `TagChild`; `knownPath` as for `KnownTags`. Begins at once.
    LibraryKeeper(Catalogue &catalogue, std::vector<std::string> tagCommand, std::string knownPath,
                  KeeperWords words);
    // Ends between two files.
    ~LibraryKeeper();
    LibraryKeeper(const LibraryKeeper &) = delete;
    LibraryKeeper &operator=(const LibraryKeeper &) = delete;

    // Whether the folder has been read once, within that time.
    bool hasRead(std::chrono::milliseconds within);

private:
    void keep();
    void read();

    Catalogue &catalogue_;
    KeeperWords words_;
    std::atomic<bool> ends_ = false;
    TagChild tags_;
    KnownTags known_;
    LibraryReader reader_;
    bool cutTold_ = false;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<bool> read_ = false;
    std::thread thread_;
};

} // namespace velmora::catalogue
