#include "tls_server.h"

#define CURL_DISABLE_TYPECHECK
#include <curl/curl.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

namespace velmora::testing {

namespace fs = std::filesystem;

namespace {

bool runs(const std::string &command) {
    return std::system(("(" + command + ") >/dev/null 2>&1").c_str()) == 0; // NOLINT(cert-env33-c)
}

// The number behind the last ":" of the line that begins so, once it has been said.
int portSaid(int output) {
    std::string said;
    constexpr int patienceMs = 10'000;
    for (;;) {
        const std::size_t at = said.find("ACCEPT");
        const std::size_t end = at == std::string::npos ? at : said.find('\n', at);
        if (end != std::string::npos)
            return std::atoi(said.c_str() + said.rfind(':', end) + 1);
        pollfd watched{output, POLLIN, 0};
        char bytes[512];
        if (::poll(&watched, 1, patienceMs) <= 0)
            return 0;
        const ssize_t got = ::read(output, bytes, sizeof bytes);
        if (got <= 0)
            return 0;
        said.append(bytes, static_cast<std::size_t>(got));
    }
}

// Where the HTTP library looks for what it trusts.
std::string placeOfTrust() {
    void *library = ::dlopen("libcurl.so.4", RTLD_LAZY | RTLD_LOCAL);
    auto *versionInfo = library == nullptr ? nullptr
                                           : reinterpret_cast<decltype(curl_version_info) *>(
                                                 ::dlsym(library, "curl_version_info"));
    if (versionInfo == nullptr)
        return "";
    const curl_version_info_data *info = versionInfo(CURLVERSION_NOW);
    return info->age >= CURLVERSION_SEVENTH && info->cainfo != nullptr ? info->cainfo : "";
}

bool writes(const char *path, const std::string &text) {
    std::ofstream file(path);
    file << text;
    file.close();
    return file.good();
}

} // namespace

Authority::Authority(const fs::path &folder) : folder_(folder) {
    fs::create_directories(folder_);
    runs("cd '" + folder_.string() +
         "' && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
         "-subj /CN=Authority -keyout authority.key -out authority.pem");
}

std::string Authority::issue(const std::string &subject, int days) const {
    const std::string end = days < 0 ? "days -1" : "days " + std::to_string(days);
    const bool isMade =
        runs("cd '" + folder_.string() +
             "' && openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes "
             "-subj /CN=server -keyout server.key -out server.csr && echo 'subjectAltName=" +
             subject + "' > server.ext && openssl x509 -req -in server.csr -CA authority.pem " +
             "-CAkey authority.key -CAcreateserial -extfile server.ext -" + end +
             " -out server.crt && cat server.crt server.key > server.pem");
    return isMade ? (folder_ / "server.pem").string() : "";
}

std::string Authority::pinOf(const std::string &certificate) {
    const std::string result = certificate + ".pin";
    runs("openssl x509 -in '" + certificate +
         "' -pubkey -noout | openssl pkey -pubin -outform der | openssl dgst -sha256 -binary | "
         "openssl base64 -A > '" +
         result + "'");
    std::ifstream file(result);
    std::string digest;
    file >> digest;
    return "sha256//" + digest;
}

TlsServer::TlsServer(const std::string &certificate, const fs::path &folder) {
    int ends[2];
    if (certificate.empty() || ::pipe2(ends, O_CLOEXEC) != 0)
        return;
    const std::string place = folder.string();
    process_ = ::fork();
    if (process_ == 0) {
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, 0);
        ::dup2(ends[1], 1);
        ::dup2(nothing, 2);
        if (::chdir(place.c_str()) == 0)
            ::execlp("openssl", "openssl", "s_server", "-accept", "127.0.0.1:0", "-HTTP", "-cert",
                     certificate.c_str(), static_cast<char *>(nullptr));
        ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
    port_ = portSaid(output_);
}

TlsServer::~TlsServer() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    if (output_ >= 0)
        ::close(output_);
}

std::string TlsServer::url(std::string_view path) const {
    return "https://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

bool trustOnly(const std::string &certificate) {
    const std::string place = placeOfTrust();
    const std::string user = std::to_string(::getuid());
    const std::string group = std::to_string(::getgid());
    if (place.empty() || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    return writes("/proc/self/setgroups", "deny") &&
           writes("/proc/self/uid_map", "0 " + user + " 1") &&
           writes("/proc/self/gid_map", "0 " + group + " 1") &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(certificate.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

} // namespace velmora::testing
