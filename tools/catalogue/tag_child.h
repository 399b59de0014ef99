#pragma once

// Reads tags in a process of its own, with a limit of memory and of time for each file: a file that
// was made for harm ends that process, is known by its name, and the next has a new one.

#include "catalogue/tags.h"
#include "platform/backends/linux/descriptor.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace velmora::catalogue {

class TagChild final : public TagReader {
public:
    // `command` is started with a socket as its standard input and calls `serveTags` there.
    // Where `goesOn` says no a file is given up.
    TagChild(
        std::vector<std::string> command, std::chrono::milliseconds limit,
        std::function<bool()> goesOn = [] { return true; });
    ~TagChild() override;
    TagChild(const TagChild &) = delete;
    TagChild &operator=(const TagChild &) = delete;

    // Absent where the process cannot be started, took too long or was to be given up. Empty where
    // it ended over the file.
    std::optional<Tags> tagsOf(const OpenFile &file) override;

private:
    bool start();
    void end();
    bool send(const OpenFile &file);
    enum class Came { Answer, Nothing, End };
    Came wait(std::string &answer);

    std::vector<std::string> command_;
    std::chrono::milliseconds limit_;
    std::function<bool()> goesOn_;
    platform::Descriptor socket_;
    pid_t process_ = -1;
};

// The other side: answers on standard input until that ends. Takes `mostBytes` of memory and no
// more, opens and writes nothing. The process's status.
int serveTags(std::size_t mostBytes);

} // namespace velmora::catalogue
