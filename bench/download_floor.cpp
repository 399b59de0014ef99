#include "bench/download_floor.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <QWidget>

#include <curl/curl.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace velmora::bench {

namespace {

using std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t packet = 1024;
constexpr std::size_t written = std::size_t{64} << 10;
constexpr long readAtOnce = 128L << 10;

class Fetch {
public:
    explicit Fetch(const std::string &target)
        : file_(::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
        auto *column = new QVBoxLayout(&window_);
        column->addWidget(&bar_);
        column->addWidget(&text_);
        window_.resize(420, 200);
        window_.show();
        collected_.reserve(written);
    }
    ~Fetch() {
        flush();
        ::close(file_);
    }
    Fetch(const Fetch &) = delete;
    Fetch &operator=(const Fetch &) = delete;

    std::size_t take(const char *bytes, std::size_t count) {
        for (std::size_t at = 0; at < count; at += packet) {
            const std::size_t length = std::min(packet, count - at);
            collected_.insert(collected_.end(), bytes + at, bytes + at + length);
            received_ += static_cast<double>(length);
            if (collected_.size() >= written)
                flush();
            pump();
        }
        return good_ ? count : 0;
    }

    CURL *easy = nullptr;

private:
    void flush() {
        good_ = ::write(file_, collected_.data(), collected_.size()) ==
                    static_cast<ssize_t>(collected_.size()) &&
                good_;
        collected_.clear();
    }

    void pump() {
        const auto now = steady_clock::now();
        if (now - pumped_ < 1ms)
            return;
        if (now - shown_ >= 16ms) {
            curl_off_t total = 0;
            curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &total);
            bar_.setValue(static_cast<int>(100 * received_ / std::max<double>(1, total)));
            text_.setText(QString::number(received_ / 1e6, 'f', 2));
            shown_ = now;
        }
        QCoreApplication::processEvents();
        pumped_ = steady_clock::now();
    }

    int file_;
    bool good_ = true;
    double received_ = 0;
    std::vector<char> collected_;
    QWidget window_;
    QProgressBar bar_;
    QLabel text_;
    steady_clock::time_point pumped_;
    steady_clock::time_point shown_;
};

std::size_t onBody(char *bytes, std::size_t size, std::size_t count, void *self) {
    return static_cast<Fetch *>(self)->take(bytes, size * count);
}

bool drive(CURL *easy) {
    CURLM *multi = curl_multi_init();
    curl_multi_add_handle(multi, easy);
    int running = 1;
    while (running != 0 && curl_multi_perform(multi, &running) == CURLM_OK && running != 0)
        curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
    int left = 0;
    const CURLMsg *message = curl_multi_info_read(multi, &left);
    const bool good = message != nullptr && message->data.result == CURLE_OK;
    curl_multi_remove_handle(multi, easy);
    curl_multi_cleanup(multi);
    return good;
}

} // namespace

bool fetchLeast(const std::string &url, const std::string &target) {
    Fetch fetch(target);
    CURL *easy = curl_easy_init();
    fetch.easy = easy;
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, readAtOnce);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &fetch);
    const bool good = drive(easy);
    curl_easy_cleanup(easy);
    return good;
}

} // namespace velmora::bench
