#pragma once

// A program that a test starts, with pipes at both ends and an environment of its own.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

namespace velmora {

class ChildProcess {
public:
    using Environment = std::map<std::string, std::string>;

    ChildProcess(std::vector<std::string> words, const Environment &environment) {
        int in[2];
        int out[2];
        if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0)
            return;
        std::vector<std::string> entries;
        for (const auto &[name, value] : environment)
            entries.push_back(name + "=" + value);
        std::vector<char *> arguments;
        std::vector<char *> variables;
        for (std::string &word : words)
            arguments.push_back(word.data());
        for (std::string &entry : entries)
            variables.push_back(entry.data());
        arguments.push_back(nullptr);
        variables.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        if (::posix_spawn(&process_, arguments.front(), &actions, nullptr, arguments.data(),
                          variables.data()) != 0)
            process_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        ::close(in[0]);
        ::close(out[1]);
        input_ = in[1];
        output_ = out[0];
    }
    ~ChildProcess() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
        closeInput();
        ::close(output_);
    }
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    // The next line of its output; "(end)" when there is none, "(silent)" after ten seconds.
    std::string line() {
        for (;;) {
            const std::size_t end = buffer_.find('\n');
            if (end != std::string::npos) {
                std::string text = buffer_.substr(0, end);
                buffer_.erase(0, end + 1);
                return text;
            }
            ::pollfd ready{output_, POLLIN, 0};
            if (::poll(&ready, 1, 10'000) <= 0)
                return "(silent)";
            char bytes[4096];
            const ssize_t got = ::read(output_, bytes, sizeof bytes);
            if (got <= 0)
                return "(end)";
            buffer_.append(bytes, static_cast<std::size_t>(got));
        }
    }
    // All lines up to the end of its output or a line "end".
    std::vector<std::string> lines() {
        std::vector<std::string> result;
        for (std::string text = line(); text != "(end)" && text != "end"; text = line()) {
            result.push_back(text);
            if (text == "(silent)")
                break;
        }
        return result;
    }
    void closeInput() {
        if (input_ >= 0)
            ::close(input_);
        input_ = -1;
    }
    void kill() { ::kill(process_, SIGKILL); }
    // Its exit status, or 128 and the signal.
    int wait() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    pid_t number() const { return process_; }

private:
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string buffer_;
};

} // namespace velmora
