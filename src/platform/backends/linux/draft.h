#pragma once

// A file that is written in full before it takes its name.

#include "platform/backends/linux/descriptor.h"
#include "platform/backends/linux/file_calls.h"

#include <sys/stat.h>

#include <string>
#include <string_view>

namespace velmora::platform {

// Destroyed before it took a name it leaves nothing behind. Every operation raises RunTimeError.
class Draft {
public:
    // The file has no name until it is complete, so that a killed process leaves nothing behind
    // either. Where the file system knows no such files it has a passing name from its beginning;
    // that is found out, and `Named` asks for it.
    enum class While { Unnamed, Named };

    Draft(std::string folder, While writing, FileCalls calls);
    ~Draft();
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    void write(std::string_view bytes);

    // What a file system does not know, or does not let its user set, stays as it gives it.
    void setMode(mode_t mode);
    void setTimes(const std::timespec &access, const std::timespec &change);
    // Owner, mode and what else is noted beside another file's content (rights of single users,
    // attributes), as far as the writer may.
    void takeAfter(int other, const struct ::stat &about);

    // What a power cut cannot take back. `Content`: under whatever name the file is found, it has
    // its content. `All`: nor its name.
    enum class Sure { Nothing, Content, All };

    // Checks that every byte arrived, and waits for what is to be sure. Nothing can be written
    // afterwards.
    void finish(Sure sure);
    // Behind `finish`: takes the name of whatever lies there, or one that nothing has; where
    // something has it, a dangling link too, "file exists" is raised, and another may be tried.
    void replace(const std::string &target);
    void takeFreeName(const std::string &target);

private:
    void makeNamed();
    int link(const std::string &name);
    void rewriteNamed();
    void sync();
    void syncName();

    FileCalls calls_;
    std::string folder_;
    std::string passing_; // the passing name, empty while there is none
    Descriptor file_;
    std::size_t written_ = 0;
    Sure sure_ = Sure::Nothing;
};

} // namespace velmora::platform
