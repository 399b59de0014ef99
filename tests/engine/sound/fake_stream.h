#pragma once

#include "platform/backends/sound/output/output_stream.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <vector>

namespace velmora::tests {

// What a sound server would do with a stream, on a clock that the test moves: a frame is put out
// when its time has come, as it was written last.
class FakeServer {
public:
    using State = platform::sound::OutputStream::State;
    using TimePoint = platform::sound::TimePoint;

    explicit FakeServer(int framesPerSecond) : rate(framesPerSecond) {}

    int rate;
    State state = State::Starting;
    bool silent = false;
    bool advances = true;
    int writes = 0;
    std::int64_t framesWritten = 0;
    std::int64_t framesAtOnce = 0; // since time went on
    std::int64_t mostAtOnce = 0;
    int stops = 0;
    std::int64_t lead = 4; // frames that are too late to be written
    int takenAheadMs = 0;
    std::int64_t most = std::numeric_limits<std::int64_t>::max(); // held; what is beyond is refused
    std::int64_t refused = 0;
    std::int64_t heardInAWrite = 0;
    TimePoint now;
    std::int64_t heard = 0;
    std::vector<float> out; // the left side of what was heard, while running
    std::map<std::int64_t, float> queue;
    bool destroyed = false;

    void move(std::int64_t frames) {
        now += platform::sound::timeOfFrames(frames, rate);
        if (frames > 0)
            framesAtOnce = 0;
        if (state != State::Running || !advances)
            return;
        for (; frames > 0; --frames, ++heard) {
            const auto found = queue.find(heard);
            out.push_back(found == queue.end() ? 0.0F : found->second);
        }
    }
};

class FakeStream final : public platform::sound::OutputStream {
public:
    explicit FakeStream(FakeServer &server) : server_(server) {}
    ~FakeStream() override { server_.destroyed = true; }

    State state() const override { return server_.state; }
    bool silent() const override { return server_.silent; }
    std::int64_t start(platform::sound::TimePoint) override {
        server_.state = State::Running;
        return server_.heard;
    }
    void stop(platform::sound::TimePoint) override {
        server_.state = State::Idle;
        server_.queue.clear();
        ++server_.stops;
    }
    std::int64_t heard(platform::sound::TimePoint) const override { return server_.heard; }
    bool advancing() const override { return server_.state == State::Running && server_.advances; }
    std::int64_t earliest(platform::sound::TimePoint) const override {
        return server_.heard + server_.lead;
    }
    void write(std::int64_t first, std::int64_t end, const Producer &producer) override {
        const auto count = static_cast<std::size_t>(end - first);
        std::vector<float> samples(count * 2);
        producer(samples.data(), first, count);
        if (end - server_.heard > server_.most)
            server_.refused += end - first;
        else
            for (std::size_t i = 0; i < count; ++i)
                server_.queue[first + static_cast<std::int64_t>(i)] = samples[i * 2];
        ++server_.writes;
        server_.framesWritten += end - first;
        server_.framesAtOnce += end - first;
        server_.mostAtOnce = std::max(server_.mostAtOnce, server_.framesAtOnce);
        server_.move(server_.heardInAWrite);
    }
    platform::sound::TimePoint refresh(platform::sound::TimePoint) override {
        return platform::sound::TimePoint::max();
    }
    int takenAheadMs() const override { return server_.takenAheadMs; }
    std::int64_t mostAhead() const override { return server_.most; }

private:
    FakeServer &server_;
};

} // namespace velmora::tests
