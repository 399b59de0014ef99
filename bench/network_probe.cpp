// What a download costs: one gigabyte in the packets of the program, against curl's own tool, and a
// search page of a thousand links. Prints Markdown.
//
//   network_probe [MEGABYTES]

#include "bench/bench_program.h"
#include "network/lrc_Internet_Search.h"
#include "network/zkWininetDown.h"
#include "platform/backends/curl/curl_internet.h"
#include "tests/engine/http/loopback_server.h"
#include "tests/fakes/instead.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

namespace {

using namespace velmora;

struct Cost {
    double wall = 0; // seconds
    double cpu = 0;
};

double cpuOf(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Cost costOf(int who, const std::function<void()> &work) {
    const auto start = std::chrono::steady_clock::now();
    const double before = cpuOf(who);
    work();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            cpuOf(who) - before};
}

void print(const std::string &what, const Cost &cost, const std::string &more = "") {
    std::printf("| %s | %.2f s | %.2f s | %s |\n", what.c_str(), cost.wall, cost.cpu, more.c_str());
    std::fflush(stdout);
}

// The server runs as a process of its own, so that its work is not counted.
struct ServerProcess {
    pid_t process = 0;
    int port = 0;

    explicit ServerProcess(const testing::LoopbackServer::Script &script) {
        int ends[2] = {};
        if (::pipe(ends) != 0)
            std::abort();
        process = ::fork();
        if (process == 0) {
            const testing::LoopbackServer server(script);
            const int own = server.port();
            if (::write(ends[1], &own, sizeof own) != sizeof own)
                std::_Exit(1);
            ::pause();
        }
        if (::read(ends[0], &port, sizeof port) != sizeof port)
            std::abort();
    }
    ~ServerProcess() {
        ::kill(process, SIGTERM);
        ::waitpid(process, nullptr, 0);
    }
    ServerProcess(const ServerProcess &) = delete;
    ServerProcess &operator=(const ServerProcess &) = delete;
    std::string url() const { return "http://127.0.0.1:" + std::to_string(port) + "/"; }
};

void measureDownload(const platform::Platform &all, const std::string &folder,
                     std::uint64_t bytes) {
    const ServerProcess server([bytes](testing::Talk &talk, const std::string &) {
        talk.send("HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\nContent-Length: " +
                  std::to_string(bytes) + "\r\n\r\n");
        talk.sendZeros(bytes);
    });
    const std::string target = folder + "/song.mp3";
    std::int64_t packets = 0;
    zkWininetDown client(all);
    client.URL = fromUtf8(server.url());
    client.FileName = fromUtf8(target);
    client.Progress = [&](double, double, double) { ++packets; };
    const Cost own = costOf(RUSAGE_SELF, [&] { client.DownloadToFile(u"music"); });
    const bool whole = std::filesystem::file_size(target) == bytes;
    std::filesystem::remove(target);
    const std::string command = "curl -s -o " + target + " " + server.url();
    const Cost tool = costOf(RUSAGE_CHILDREN, [&] {
        if (std::system(command.c_str()) != 0)
            std::fputs("curl failed\n", stderr);
    });
    std::filesystem::remove(target);
    const std::string size = std::to_string(bytes >> 20) + " MB";
    print(size + " in packets of 1,024 bytes" + (whole ? "" : " (not whole!)"), own,
          std::to_string(packets) + " events and pumps");
    print(size + " by curl's own tool", tool);
}

void measurePage(bench::Program &program, const platform::Platform &all) {
    constexpr int links = 1000;
    std::string page = "<html>\r\n";
    for (int i = 0; i < links; ++i)
        page += "<a href=\"http://lyrics.example/LrcDown/" + std::to_string(i) + ".lrc\">x</a>\r\n";
    const ServerProcess server(
        [&](testing::Talk &talk, const std::string &) { talk.send(testing::response(page)); });
    const std::u16string key = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";
    program.fake.registry.setText(key, u"lrcSearch", u"http://127.0.0.1:" + decimal(server.port));
    program.fake.registry.setText(key, u"lrcSiteB", u"http://lyrics.example");
    Velmora app(all);
    const Cost cost =
        costOf(RUSAGE_SELF, [&] { app.lrc_Internet_Search().searchLrc(u"anything"); });
    print("a search page of 1,000 links, fetched twice and scanned", cost,
          decimal(app.lrc_Internet_Search().lrcDownloadLinks.upperBound() + 1) == u"1000"
              ? "all found"
              : "not all found!");
}

} // namespace

int main(int count, char **words) {
    const std::uint64_t megabytes = count > 1 ? std::strtoull(words[1], nullptr, 10) : 1024;
    const auto ansi = platform::makeAnsiText([] { return std::u16string(); });
    const auto files = platform::makeFileSystem(*ansi);
    const auto internet =
        platform::makeInternet(*ansi, [] { return std::vector<std::u16string>(); });
    bench::Program program;
    const platform::Platform all =
        fakes::with(program.fake.bundle(),
                    {.ansi = ansi.get(), .files = files.get(), .internet = internet.get()});
    char folder[] = "/tmp/velmora-bench-XXXXXX";
    if (::mkdtemp(folder) == nullptr)
        return 1;
    std::puts("| network | wall | processor | |\n|---|---|---|---|");
    measureDownload(all, folder, megabytes << 20);
    measurePage(program, all);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return 0;
}
