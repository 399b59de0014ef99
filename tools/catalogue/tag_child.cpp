#include "catalogue/tag_child.h"

#include "catalogue/tag_answer.h"

#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <utility>

namespace velmora::catalogue {

namespace {

constexpr std::size_t longestAnswer = 3 * (longestTag + 1) * 4;

// A message of one byte, with the file beside it.
struct FileMessage {
    char byte = 'f';
    iovec content{&byte, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> beside{};
    msghdr head{};

    FileMessage() {
        head.msg_iov = &content;
        head.msg_iovlen = 1;
        head.msg_control = beside.data();
        head.msg_controllen = beside.size();
    }
};

void setLimit(__rlimit_resource what, rlim_t most) {
    const rlimit limit{most, most};
    ::setrlimit(what, &limit);
}

platform::Descriptor received(int socket) {
    FileMessage message;
    ssize_t got = 0;
    do
        got = ::recvmsg(socket, &message.head, MSG_CMSG_CLOEXEC);
    while (got < 0 && errno == EINTR);
    const cmsghdr *beside = got == 1 ? CMSG_FIRSTHDR(&message.head) : nullptr;
    if (beside == nullptr || beside->cmsg_type != SCM_RIGHTS)
        return platform::Descriptor();
    int number = -1;
    std::memcpy(&number, CMSG_DATA(beside), sizeof number);
    return platform::Descriptor(number);
}

} // namespace

TagChild::TagChild(std::vector<std::string> command, std::chrono::milliseconds limit,
                   std::function<bool()> goesOn)
    : command_(std::move(command)), limit_(limit), goesOn_(std::move(goesOn)) {}

TagChild::~TagChild() { end(); }

bool TagChild::start() {
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    platform::Descriptor own(ends[0]);
    const platform::Descriptor other(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, other.number(), STDIN_FILENO);
    // The signals that end the server are held back in it, and would be here too.
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    std::vector<char *> words;
    for (std::string &word : command_)
        words.push_back(word.data());
    words.push_back(nullptr);
    const int failed =
        ::posix_spawn(&process_, words.front(), &actions, &attributes, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failed != 0) {
        process_ = -1;
        return false;
    }
    socket_ = std::move(own);
    return true;
}

void TagChild::end() {
    if (process_ < 0)
        return;
    socket_ = platform::Descriptor();
    ::kill(process_, SIGKILL);
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR)
        continue;
    process_ = -1;
}

bool TagChild::send(const OpenFile &file) {
    FileMessage message;
    cmsghdr *beside = CMSG_FIRSTHDR(&message.head);
    beside->cmsg_level = SOL_SOCKET;
    beside->cmsg_type = SCM_RIGHTS;
    beside->cmsg_len = CMSG_LEN(sizeof(int));
    const int number = file.file.number();
    std::memcpy(CMSG_DATA(beside), &number, sizeof number);
    return ::sendmsg(socket_.number(), &message.head, MSG_NOSIGNAL) == 1;
}

TagChild::Came TagChild::wait(std::string &answer) {
    using Clock = std::chrono::steady_clock;
    constexpr int look = 100; // milliseconds
    const auto until = Clock::now() + limit_;
    pollfd place{socket_.number(), POLLIN, 0};
    while (::poll(&place, 1, look) <= 0)
        if (Clock::now() >= until || !goesOn_())
            return Came::Nothing;
    answer.resize(longestAnswer);
    const ssize_t got = ::recv(socket_.number(), answer.data(), answer.size(), 0);
    answer.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return got > 0 ? Came::Answer : Came::End;
}

std::optional<Tags> TagChild::tagsOf(const OpenFile &file) {
    if (process_ < 0 && !start())
        return std::nullopt;
    if (!send(file)) {
        end(); // it died since the last file, or never lived
        return std::nullopt;
    }
    std::string answer;
    const Came came = wait(answer);
    if (came != Came::Answer)
        end();
    if (came == Came::Nothing)
        return std::nullopt;
    return tagsSaid(answer);
}

int serveTags(std::size_t mostBytes) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    setLimit(RLIMIT_CORE, 0);
    setLimit(RLIMIT_FSIZE, 0);
    if (mostBytes != 0)
        setLimit(RLIMIT_AS, mostBytes);
    while (true) {
        OpenFile file;
        file.file = received(STDIN_FILENO);
        if (!file.file)
            return 0;
        std::string answer;
        try {
            answer = sayTags(catalogue::tagsOf(file));
        } catch (const std::exception &) {
            answer = sayTags({}); // more than it may take
        }
        if (::send(STDIN_FILENO, answer.data(), answer.size(), MSG_NOSIGNAL) < 0)
            return 1;
    }
}

} // namespace velmora::catalogue
