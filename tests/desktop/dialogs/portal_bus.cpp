#include "tests/desktop/dialogs/portal_bus.h"

#include "tests/desktop/qt/desk.h"

#include <csignal>
#include <cstdlib>

namespace velmora::tests {

namespace {

constexpr int startLimitMs = 60000;

// No service is started by itself: what this machine has installed must not answer.
std::string configuration(const std::string &address) {
    return "<busconfig><type>session</type><listen>" + address +
           "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
           "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
           "<allow own=\"*\"/></policy></busconfig>";
}

} // namespace

PortalBus::PortalBus() {
    const std::string address = "unix:path=" + folder_.bytes("bus");
    folder_.write("bus.conf", configuration(address));
    script("\"answers\": []");
    bus_ = desk().session.start(
        {"dbus-daemon", "--config-file=" + folder_.bytes("bus.conf"), "--nofork"});
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    EXPECT_TRUE(
        waitUntil([&] { return std::filesystem::exists(folder_.bytes("bus")); }, startLimitMs))
        << "no bus";
}

PortalBus::~PortalBus() {
    endPortal();
    endBus();
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void PortalBus::script(const std::string &members) const {
    // Never half a script for a portal that reads it just now.
    folder_.write("script.new", "{" + members + "}");
    std::filesystem::rename(folder_.bytes("script.new"), folder_.bytes("script.json"));
}

void PortalBus::startPortal() {
    portal_ =
        desk().session.start({"env", "DBUS_SESSION_BUS_ADDRESS=unix:path=" + folder_.bytes("bus"),
                              "/usr/bin/python3", VELMORA_PORTAL, folder_.path()});
    EXPECT_TRUE(waitUntil([this] { return heard("ready"); }, startLimitMs)) << "no portal";
}

void PortalBus::endPortal() {
    if (portal_ > 0) {
        ::kill(portal_, SIGCONT);
        desk().session.end(std::exchange(portal_, -1));
    }
}

void PortalBus::endBus() {
    if (bus_ > 0)
        desk().session.end(std::exchange(bus_, -1));
}

void PortalBus::stopPortal() const { ::kill(portal_, SIGSTOP); }
void PortalBus::goOn() const { ::kill(portal_, SIGCONT); }

int PortalBus::count(const std::string &part) const {
    const std::string all = calls();
    int found = 0;
    for (std::size_t at = all.find(part); at != std::string::npos; at = all.find(part, at + 1))
        ++found;
    return found;
}

std::string quotedUri(const std::string &path) {
    std::string uri = "\"file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '/' || (byte < 0x80 && std::isalnum(byte) != 0))
            uri += c;
        else
            uri.append({'%', "0123456789ABCDEF"[byte >> 4U], "0123456789ABCDEF"[byte & 15U]});
    }
    return uri + "\"";
}

} // namespace velmora::tests
