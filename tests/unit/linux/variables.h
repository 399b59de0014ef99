#pragma once

// Environment variables for the time of a test.

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class Variables {
public:
    // Clears the names, then sets the values.
    Variables(const std::vector<std::string> &names,
              const std::map<std::string, std::string> &values) {
        for (const std::string &name : names) {
            keep(name);
            ::unsetenv(name.c_str());
        }
        for (const auto &[name, value] : values) {
            keep(name);
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    ~Variables() {
        for (const auto &[name, value] : before_)
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }
    Variables(const Variables &) = delete;
    Variables &operator=(const Variables &) = delete;

private:
    void keep(const std::string &name) {
        const char *value = std::getenv(name.c_str());
        before_.emplace(name, value ? std::optional<std::string>(value) : std::nullopt);
    }

    std::map<std::string, std::optional<std::string>> before_;
};

} // namespace velmora
