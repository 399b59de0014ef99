// velmora-registry: reads and sets what the player keeps in its registry file.

#include "platform/backends/linux/home_folders.h"
#include "registry_tool/commands.h"

#include <getopt.h>

#include <cstdio>
#include <exception>
#include <iostream>

namespace {

using velmora::registry_tool::Job;

constexpr const char *usage =
    "Usage: velmora-registry [OPTION]... COMMAND\n"
    "Reads and sets what Velmora keeps in its registry file, also while it runs.\n"
    "\n"
    "  list [KEY]               every value in a key and below it\n"
    "  get KEY/NAME             one value\n"
    "  set KEY/NAME TEXT        set a value\n"
    "  delete KEY/NAME          delete a value; KEY/ deletes the key with its values\n"
    "  hosts                    the servers that the player asks\n"
    "  hosts --at URL           name one server for everything, as http://NAME:PORT\n"
    "  hosts --none             name none: nothing is asked of anybody\n"
    "\n"
    "A KEY lies below SOFTWARE/Norvane/zkPlayer unless it begins with SOFTWARE or SYSTEM.\n"
    "\n"
    "  -n, --number             of set: the value is a number\n"
    "  -f, --file FILE          another registry file than one's own\n"
    "  -h, --help               this text\n"
    "  -V, --version            the version\n"
    "\n"
    "Status: 0 done, 1 nothing there or refused, 2 used wrongly.\n";

// What is to be done; the status where there is nothing more to do.
int readWords(int count, char **words, Job &job) {
    enum : int { atOption = 256, noneOption };
    const option options[] = {{"number", no_argument, nullptr, 'n'},
                              {"file", required_argument, nullptr, 'f'},
                              {"at", required_argument, nullptr, atOption},
                              {"none", no_argument, nullptr, noneOption},
                              {"help", no_argument, nullptr, 'h'},
                              {"version", no_argument, nullptr, 'V'},
                              {nullptr, 0, nullptr, 0}};
    constexpr int goOn = -1;
    for (int found = 0; (found = getopt_long(count, words, "nf:hV", options, nullptr)) != -1;) {
        switch (found) {
        case 'n':
            job.number = true;
            break;
        case 'f':
            job.file = optarg;
            break;
        case atOption:
            job.at = optarg;
            break;
        case noneOption:
            job.none = true;
            break;
        case 'h':
            std::fputs(usage, stdout);
            return velmora::registry_tool::done;
        case 'V':
            std::puts("velmora-registry " VELMORA_VERSION);
            return velmora::registry_tool::done;
        default:
            std::fputs("Try velmora-registry --help.\n", stderr);
            return velmora::registry_tool::misused;
        }
    }
    job.words.assign(words + optind, words + count);
    return goOn;
}

} // namespace

int main(int count, char **words) {
    Job job;
    job.file = velmora::platform::homeFolders().registryFile();
    const int status = readWords(count, words, job);
    if (status >= 0)
        return status;
    if (job.file.empty()) {
        std::fputs("velmora-registry: there is no home folder; name the file with --file\n",
                   stderr);
        return velmora::registry_tool::failed;
    }
    try {
        return velmora::registry_tool::run(job, std::cout, std::cerr);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velmora-registry: %s\n", error.what());
        return velmora::registry_tool::failed;
    }
}
