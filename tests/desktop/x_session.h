#pragma once

// A private screen for tests of windows: an X server of its own, a window manager, a compositor on
// request, and homes that are empty. Nothing of the user's own desktop is touched.

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace velmora::tests {

struct XSessionOptions {
    int width = 1280;
    int height = 800;
    bool windowManager = true;
};

// Starts in the constructor and ends everything in the destructor.
class XSession {
public:
    explicit XSession(XSessionOptions options = {});
    ~XSession();
    XSession(const XSession &) = delete;
    XSession &operator=(const XSession &) = delete;

    // False when one of the programs could not be started; the tests cannot run then.
    bool running() const { return running_; }
    const std::string &display() const { return display_; }
    const std::string &home() const { return home_; }

    // Points this process (and what it starts) at the session.
    void exportToEnvironment() const;

    // Each returns when the compositor has taken over, or let go of, the screen.
    bool startCompositor();
    bool stopCompositor();

    // Starts a program in the session; it is ended with the session. Answers its process, or -1.
    pid_t start(const std::vector<std::string> &command);
    // Ends a program started here.
    void end(pid_t process);
    // Runs a program to its end and answers what it printed.
    std::string run(const std::vector<std::string> &command) const;

private:
    bool startServer();
    bool startWindowManager();
    std::vector<std::string> environment() const;

    XSessionOptions options_;
    std::string home_;
    std::string display_;
    std::vector<pid_t> children_;
    pid_t server_ = -1;
    pid_t compositor_ = -1;
    bool running_ = false;
};

// Polls until the condition holds; false when the limit passes first.
bool waitUntil(const std::function<bool()> &condition, int limitMs = 5000);

} // namespace velmora::tests
