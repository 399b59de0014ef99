#pragma once

// A session bus of a test's own, and on request a portal on it that does as a script says
// (portal.py). This process is pointed at the bus while it lasts.

#include "tests/unit/linux/temp_folder.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace velmora::tests {

class PortalBus {
public:
    PortalBus();
    ~PortalBus();
    PortalBus(const PortalBus &) = delete;
    PortalBus &operator=(const PortalBus &) = delete;

    // The members of the script's object, without its braces.
    void script(const std::string &members) const;
    // Returns when the portal has its name.
    void startPortal();
    void endPortal();
    void endBus();
    // The portal does nothing more, and does not end either.
    void stopPortal() const;
    void goOn() const;

    // What was asked of it, one a line.
    std::string calls() const { return folder_.read("calls.json"); }
    bool heard(const std::string &part) const { return calls().find(part) != std::string::npos; }
    int count(const std::string &part) const;

private:
    TempFolder folder_;
    pid_t bus_ = -1;
    pid_t portal_ = -1;
};

// "file:" and the path, every byte but letters, digits and slashes as %XX, in quotes.
std::string quotedUri(const std::string &path);

} // namespace velmora::tests
