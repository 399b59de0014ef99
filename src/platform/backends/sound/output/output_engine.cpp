#include "platform/backends/sound/output/output_engine.h"

#include <algorithm>

namespace velmora::platform::sound {

OutputEngine::~OutputEngine() {
    for (const auto &left : left_)
        if (const auto thread = left.lock())
            thread->end();
    if (thread_)
        thread_->end();
}

bool OutputEngine::start() {
    if (!thread_)
        thread_ = OutputThread::start(options_);
    return thread_ != nullptr;
}

void OutputEngine::add(std::unique_ptr<Voice> voice) {
    if (!start())
        return;
    std::vector<std::unique_ptr<Voice>> voices;
    voices.push_back(std::move(voice));
    thread_->add(std::move(voices));
}

void OutputEngine::wake() {
    tend();
    if (thread_)
        thread_->wake();
    for (const auto &left : left_)
        if (const auto thread = left.lock())
            thread->wake();
}

void OutputEngine::tend() {
    if (!thread_)
        return;
    auto waiting = thread_->takeBack();
    if (waiting.empty())
        return;
    if (auto other = OutputThread::start(options_)) {
        thread_->leave();
        std::erase_if(left_, [](const auto &left) { return left.expired(); });
        left_.push_back(thread_);
        thread_ = std::move(other);
    }
    thread_->add(std::move(waiting));
}

} // namespace velmora::platform::sound
