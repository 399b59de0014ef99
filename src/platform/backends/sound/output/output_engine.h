#pragma once

// What puts out sound. One thread does it, started for the first medium; the connection to the
// sound server is kept between media, so that the next one sounds at once. Only where the file of a
// medium does not answer and holds the thread up, the next medium gets another one.

#include "platform/backends/sound/output/output_thread.h"

#include <memory>
#include <vector>

namespace velmora::platform::sound {

class OutputEngine {
public:
    explicit OutputEngine(PulseLinkOptions options) : options_(std::move(options)) {}
    // Ends whatever still sounds. No file is waited for longer than a moment.
    ~OutputEngine();
    OutputEngine(const OutputEngine &) = delete;
    OutputEngine &operator=(const OutputEngine &) = delete;

    // Sees to a thread that can take media; false: the system has none to give.
    bool start();
    // Hands over a medium. It lives until its wish says closed.
    void add(std::unique_ptr<Voice> voice);
    // A wish has changed. Cheap, also when called very often.
    void wake();
    // Finds another thread for a medium that waits for one that is held up. Cheap; to be called now
    // and then while a medium is open.
    void tend();

private:
    PulseLinkOptions options_;
    std::shared_ptr<OutputThread> thread_;
    // Those left to what holds them up.
    std::vector<std::weak_ptr<OutputThread>> left_;
};

} // namespace velmora::platform::sound
