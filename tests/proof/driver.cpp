// Does one named thing in a prepared folder and tells what came of it, in one line of JSON to the
// socket that is its standard output.
//
//     velmora_proof OPERATION FOLDER [wait]
//
// With "wait" it says so when everything ahead of the operation is done, and goes on at SIGUSR1:
// the tracer is attached meanwhile, and what it counts is the operation alone.

#include "base/run_time_error.h"
#include "tests/proof/world.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string_view>

namespace {

using namespace velmora;
using namespace velmora::proof;

std::vector<Operation> everything() {
    std::vector<Operation> all;
    for (const auto &some :
         {listOperations(), lyricOperations(), settingsOperations(), networkOperations()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

// Ahead of the first thread, which takes after this one: a thread that leaves the signal open is
// given it, and that is the end of the process.
void holdSignal() {
    sigset_t go;
    sigemptyset(&go);
    sigaddset(&go, SIGUSR1);
    ::sigprocmask(SIG_BLOCK, &go, nullptr);
}

void waitForTracer() {
    // The tracer is the runner's child and not this process's parent.
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
    sigset_t go;
    sigemptyset(&go);
    sigaddset(&go, SIGUSR1);
    constexpr std::string_view ready = "ready\n";
    ::send(STDOUT_FILENO, ready.data(), ready.size(), MSG_NOSIGNAL);
    int signal = 0;
    ::sigwait(&go, &signal);
}

} // namespace

int main(int count, char **arguments) {
    const std::string_view name = count > 1 ? arguments[1] : "";
    if (name.empty()) {
        for (const Operation &operation : everything())
            std::printf("%.*s\n", static_cast<int>(operation.name.size()), operation.name.data());
        return 0;
    }
    for (const Operation &operation : everything()) {
        if (operation.name != name || count < 3)
            continue;
        holdSignal();
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody would let it go on
        World world(arguments[2]);
        operation.prepare(world);
        if (count > 3)
            waitForTracer();
        try {
            operation.act(world);
        } catch (const RunTimeError &error) {
            world.raised = error.description(); // it ends the handler of a click, and that is all
        }
        world.report();
        // As a process that is killed between two things: no destructor tidies up.
        ::_exit(0);
    }
    std::fprintf(stderr, "velmora_proof: no such operation\n");
    return 2;
}
