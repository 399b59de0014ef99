// velmora-open: opens files in the player that runs, and steers it.

#include "open/arguments.h"
#include "open/requests.h"

#include <cstdio>
#include <exception>

namespace {

constexpr const char *usage =
    "Usage: velmora-open [OPTION] [FILE]...\n"
    "Opens files and folders in Velmora, which is started where it does not run: the first is\n"
    "played. Without a file it is brought to the front.\n"
    "\n"
    "  -e, --enqueue            only put the files behind the play list\n"
    "      --play               play\n"
    "      --pause              pause\n"
    "      --play-pause         pause what plays, play what does not\n"
    "      --stop               stop\n"
    "      --next               the next track\n"
    "      --previous           the track before\n"
    "      --seek TIME          go to a time, in seconds or as 1:30; +10 and -10 are steps\n"
    "      --volume NUMBER      0 to 100; +5 and -5 are steps\n"
    "      --raise              bring the player to the front\n"
    "      --quit               end it\n"
    "      --status             say what plays\n"
    "      --lyrics             say each line of the lyric when its time has come\n"
    "  -h, --help               this text\n"
    "  -V, --version            the version\n"
    "\n"
    "Status: 0 done, 1 not reached or not there, 2 used wrongly.\n";

} // namespace

int main(int count, char **words) {
    namespace tool = velmora::open_tool;
    try {
        std::string complaint;
        const auto request = tool::readWords(
            std::vector<std::string>(words + (count > 0 ? 1 : 0), words + count), complaint);
        if (!request) {
            std::fprintf(stderr, "velmora-open: %s\nTry velmora-open --help.\n", complaint.c_str());
            return tool::misused;
        }
        if (request->action == tool::Action::Help) {
            std::fputs(usage, stdout);
            return tool::done;
        }
        if (request->action == tool::Action::Version) {
            std::puts("velmora-open " VELMORA_VERSION);
            return tool::done;
        }
        return tool::perform(*request);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velmora-open: %s\n", error.what());
        return tool::failed;
    }
}
