#pragma once

// The desktop's own dialog for a file or a folder: org.freedesktop.portal.FileChooser. Another
// process shows it; the answer comes as a signal of an object that is made for each question.

#include "platform/backends/bus/connection.h"
#include "platform/backends/bus/dialog_host.h"
#include "text/dialog_filters.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora::platform::bus {

class FileChooser {
public:
    enum class Kind : std::uint8_t { Open, Save, Folder };

    struct Question {
        Kind kind = Kind::Open;
        std::string parent; // "x11:" and the window's number in hexadecimal digits, or nothing
        std::string title;
        std::vector<DialogFilter> filters;
        std::string folder;   // to begin in, as the bytes of its path; may be empty
        std::string name;     // proposed to save under, as bytes; may be empty
        bool isThere = false; // whether the folder has a file of that name
    };

    struct Answer {
        enum class How : std::uint8_t { NotAsked, Cancelled, Chosen };
        How how = How::NotAsked; // no portal asked the person, or it went away meanwhile
        std::string path;        // of what was chosen, as bytes
    };

    // Both must outlive it.
    FileChooser(Connection &connection, const DialogHost &host)
        : connection_(connection), host_(host) {}

    Answer ask(const Question &question);

    // The program ends: the dialog that is up goes with it.
    void letGo();

private:
    struct Portal;
    struct Request;

    std::optional<Portal> findPortal();
    bool callAndWait(const Connection::Call &call, const std::function<int(sd_bus_message *)> &fill,
                     const std::function<bool(sd_bus_message *)> &take,
                     const std::function<bool()> &enough);
    bool open(const Question &question, Request &request);
    int fill(const Question &question, const Request &request, sd_bus_message *message) const;
    int fillPlace(const Question &question, const Request &request, sd_bus_message *message) const;
    int fillFilters(const std::vector<DialogFilter> &filters, sd_bus_message *message) const;
    int fillBytes(const char *key, const std::string &bytes, sd_bus_message *message) const;
    void close(const Request &request);

    Connection &connection_;
    const DialogHost &host_;
    std::weak_ptr<void> owed_; // the answer of a call that was not waited for any longer
    std::uint32_t asked_ = 0;
    Request *up_ = nullptr;
};

} // namespace velmora::platform::bus
