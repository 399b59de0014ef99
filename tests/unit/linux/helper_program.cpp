// A small program that the tests of processes start: it shows what one of them sees.

#include "platform/backends/linux/linux.h"
#include "text/path_text.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace velmora::platform;

void say(const std::string &line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void waitForEndOfInput() {
    char byte = 0;
    while (::read(0, &byte, 1) > 0) {
    }
}

// The path of each process that the query answers, then "end".
int query(Processes &processes) {
    for (const auto &path : processes.ExecQuery(u"Select * Form Win32_Process", 48))
        say(pathBytes(path));
    say("end");
    return 0;
}

// The same, asked by a process that this one starts.
int queryOfChild(const char *self) {
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl(self, self, "query", nullptr);
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

int lock(Processes &processes) {
    say(processes.previousInstance() ? "refused" : "first");
    say(processes.previousInstance() ? "refused" : "first");
    waitForEndOfInput();
    return 0;
}

struct Destroyed {
    ~Destroyed() { say("destroyed"); }
};

int end(const HomeFolders &homes) {
    static const Destroyed atExit;
    std::atexit([] { say("at exit"); });
    const auto processes = makeProcesses(homes, [] { say("flushed"); });
    try {
        processes->end(7);
    } catch (...) {
        say("caught");
    }
    return 1;
}

} // namespace

int main(int count, char **arguments) {
    const std::string mode = count > 1 ? arguments[1] : "";
    const HomeFolders homes = homeFolders();
    const auto processes = makeProcesses(homes, {});
    if (mode == "query")
        return query(*processes);
    if (mode == "query-of-child")
        return queryOfChild(arguments[0]);
    if (mode == "lock")
        return lock(*processes);
    if (mode == "end")
        return end(homes);
    if (mode == "name") {
        say(pathBytes(processes->applicationFolder()));
        say(pathBytes(processes->applicationStem()));
        return 0;
    }
    say("ready");
    waitForEndOfInput();
    return 0;
}
