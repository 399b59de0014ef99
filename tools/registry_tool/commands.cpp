#include "registry_tool/commands.h"

#include "base/text.h"
#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/active_page.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "text/utf8_units.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <ostream>

namespace velmora::registry_tool {

namespace {

using platform::SqliteRegistry;

constexpr std::uint32_t hive = platform::HKEY_LOCAL_MACHINE;
constexpr char16_t playersKey[] = u"SOFTWARE\\Norvane\\zkPlayer";
constexpr char16_t hostsKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";
constexpr const char16_t *hostNames[] = {u"lrcSearch", u"lrcSiteA", u"lrcSiteB", u"songSearch",
                                         u"maker"};

struct Place {
    std::u16string key;
    std::u16string name; // empty: the key itself
};

std::u16string textOf(std::string_view bytes) { return platform::decodeUtf8UnitsAnyway(bytes); }
std::string bytesOf(std::u16string_view text) { return platform::encodeUtf8Units(text); }

bool beginsWithPart(std::u16string_view path, std::u16string_view part) {
    const std::u16string_view first = path.substr(0, path.find(u'\\'));
    return equalsIgnoringCase(first, part);
}

std::u16string keyPath(std::u16string path) {
    if (path.empty())
        return playersKey;
    if (beginsWithPart(path, u"SOFTWARE") || beginsWithPart(path, u"SYSTEM"))
        return path;
    return std::u16string(playersKey) + u"\\" + path;
}

std::u16string withBackslashes(std::string_view word) {
    return replaceAll(textOf(word), u"/", u"\\");
}

Place placeOf(std::string_view word) {
    const std::u16string path = withBackslashes(word);
    const std::size_t last = path.rfind(u'\\');
    if (last == std::u16string::npos)
        return {playersKey, path};
    return {keyPath(path.substr(0, last)), path.substr(last + 1)};
}

std::string shownPlace(const Place &place) { return bytesOf(place.key + u"\\" + place.name); }

// A text as one line that can be read back: what no terminal shows has a name.
std::string quoted(std::u16string_view text) {
    std::string out = "\"";
    for (const char byte : bytesOf(text)) {
        constexpr char hex[] = "0123456789abcdef";
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '"' || byte == '\\')
            out += {'\\', byte};
        else if (byte == '\n')
            out += "\\n";
        else if (byte == '\r')
            out += "\\r";
        else if (value < 0x20 || value == 0x7F)
            out += {'\\', 'x', hex[value >> 4], hex[value & 0xF]};
        else
            out += byte;
    }
    return out + '"';
}

std::string shown(const SqliteRegistry::Value &value) {
    if (value.type == platform::REG_DWORD)
        return std::to_string(value.number);
    return quoted(untilNul(value.text));
}

const char *reason(std::int32_t error) {
    switch (error) {
    case platform::ERROR_ACCESS_DENIED:
        return "it cannot be written, or a key below is in the way";
    case platform::ERROR_DISK_FULL:
        return "the disk is full";
    case platform::ERROR_BUSY:
        return "another program has it locked; end the player and try again";
    case platform::ERROR_FILE_NOT_FOUND:
        return "there is no such entry";
    default:
        return "it cannot be read or written";
    }
}

// "http://name:port" and nothing behind: the player puts paths of its own there.
bool isAddress(std::string_view text) {
    constexpr std::string_view scheme = "http://";
    if (text.substr(0, scheme.size()) != scheme || text.size() == scheme.size())
        return false;
    return text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                  ".-_:[]",
                                  scheme.size()) == std::string_view::npos;
}

class Tool {
public:
    Tool(const std::string &file, std::ostream &out, std::ostream &err)
        : file_(file), out_(out), err_(err),
          ansi_(platform::makeAnsiText([this] { return platform::activePage(registry_); },
                                       platform::textLocale())),
          registry_(file, *ansi_) {}

    int list(const std::u16string &key) {
        if (!exists())
            return failed;
        std::vector<SqliteRegistry::Entry> entries;
        if (const auto error = registry_.list(hive, key, entries); error != platform::ERROR_SUCCESS)
            return refused(error);
        if (entries.empty()) {
            err_ << "velmora-registry: there is no key " << bytesOf(key) << '\n';
            return failed;
        }
        for (const SqliteRegistry::Entry &entry : entries) {
            out_ << bytesOf(entry.path) << '\\';
            if (entry.name)
                out_ << bytesOf(*entry.name) << " = " << shown(entry.value);
            out_ << '\n';
        }
        return done;
    }

    int get(const Place &place) {
        if (!exists())
            return failed;
        // A lock or a wrong right must not be taken for an entry that is missing.
        std::vector<SqliteRegistry::Entry> entries;
        if (const auto error = registry_.list(hive, place.key, entries);
            error != platform::ERROR_SUCCESS)
            return refused(error);
        const auto value = registry_.stored(hive, place.key, place.name);
        if (!value) {
            err_ << "velmora-registry: there is no " << shownPlace(place) << '\n';
            return failed;
        }
        if (value->type == platform::REG_DWORD)
            out_ << value->number << '\n';
        else
            out_ << bytesOf(untilNul(value->text)) << '\n';
        return done;
    }

    int set(const Place &place, const std::string &text, bool asNumber) {
        const auto before = registry_.stored(hive, place.key, place.name);
        const bool number = asNumber || (before && before->type == platform::REG_DWORD);
        std::uint32_t value = 0;
        if (number && !readNumber(text, value)) {
            err_ << "velmora-registry: " << shownPlace(place)
                 << " is a whole number from 0 to 4294967295, not \"" << text << "\"\n";
            return misused;
        }
        const auto error = number ? write(place, value) : write(place, textOf(text));
        return error == platform::ERROR_SUCCESS ? done : refused(error);
    }

    int remove(const Place &place) {
        if (!exists())
            return failed;
        const auto error = place.name.empty() ? registry_.RegDeleteKeyA(hive, place.key)
                                              : registry_.removeValue(hive, place.key, place.name);
        if (error == platform::ERROR_FILE_NOT_FOUND) {
            err_ << "velmora-registry: there is no " << shownPlace(place) << '\n';
            return failed;
        }
        if (error == platform::ERROR_ACCESS_DENIED && place.name.empty()) {
            err_ << "velmora-registry: " << bytesOf(place.key)
                 << " was not deleted: there are keys below it, or the file cannot be written\n";
            return failed;
        }
        return error == platform::ERROR_SUCCESS ? done : refused(error);
    }

    int showHosts() {
        if (!exists())
            return failed;
        for (const char16_t *name : hostNames) {
            const auto value = registry_.stored(hive, hostsKey, name);
            out_ << bytesOf(name) << " = "
                 << (value ? shown(*value) : std::string("none: nothing is asked")) << '\n';
        }
        return done;
    }

    int nameHosts(const std::string &address) {
        for (const char16_t *name : hostNames) {
            const auto error = write({hostsKey, name}, textOf(address));
            if (error != platform::ERROR_SUCCESS)
                return refused(error);
        }
        return done;
    }

    int forgetHosts() {
        if (!exists())
            return failed;
        for (const char16_t *name : hostNames) {
            const auto error = registry_.removeValue(hive, hostsKey, name);
            if (error != platform::ERROR_SUCCESS && error != platform::ERROR_FILE_NOT_FOUND)
                return refused(error);
        }
        return done;
    }

private:
    static bool readNumber(const std::string &text, std::uint32_t &value) {
        const char *end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, value);
        return read.ec == std::errc() && read.ptr == end && !text.empty();
    }

    std::int32_t write(const Place &place, std::uint32_t value) {
        return write(
            place,
            [&](platform::RegistryHandle key) {
                return registry_.RegSetValueExA(key, place.name, value);
            });
    }
    std::int32_t write(const Place &place, const std::u16string &text) {
        return write(
            place,
            [&](platform::RegistryHandle key) {
                return registry_.RegSetValueExA(key, place.name, platform::REG_SZ, text,
                                                static_cast<std::uint32_t>(ansi_->byteCount(text)));
            });
    }
    // What is written lies on the disk when the tool says that it is done.
    template <typename Put> std::int32_t write(const Place &place, Put put) {
        platform::RegistryHandle key = 0;
        auto error = registry_.RegCreateKeyA(hive, place.key, key);
        if (error != platform::ERROR_SUCCESS)
            return error;
        error = put(key);
        if (error == platform::ERROR_SUCCESS)
            error = registry_.RegFlushKey(key);
        registry_.RegCloseKey(key);
        return error;
    }

    bool exists() {
        struct stat info {};
        if (::stat(file_.c_str(), &info) == 0)
            return true;
        err_ << "velmora-registry: there is no file " << file_
             << "; the player makes it at its first start\n";
        return false;
    }

    int refused(std::int32_t error) {
        err_ << "velmora-registry: " << file_ << ": " << reason(error) << '\n';
        return failed;
    }

    const std::string &file_;
    std::ostream &out_;
    std::ostream &err_;
    std::unique_ptr<platform::AnsiText> ansi_;
    SqliteRegistry registry_;
};

int misuse(std::ostream &err, std::string_view what) {
    err << "velmora-registry: " << what << "; see velmora-registry --help\n";
    return misused;
}

int runHosts(Tool &tool, const Job &job, std::ostream &err) {
    if (job.none && !job.at.empty())
        return misuse(err, "either --at or --none");
    if (job.none)
        return tool.forgetHosts();
    if (job.at.empty())
        return tool.showHosts();
    if (!isAddress(job.at))
        return misuse(err, "an address is http://NAME:PORT, and nothing behind it");
    return tool.nameHosts(job.at);
}

} // namespace

int run(const Job &job, std::ostream &out, std::ostream &err) {
    if (job.words.empty())
        return misuse(err, "what is to be done is missing");
    const std::string &command = job.words.front();
    const std::size_t count = job.words.size() - 1;
    const bool isHosts = command == "hosts";
    if (!isHosts && (!job.at.empty() || job.none))
        return misuse(err, "--at and --none belong to hosts");
    if (command != "set" && job.number)
        return misuse(err, "--number belongs to set");

    Tool tool(job.file, out, err);
    const auto place = [&] { return placeOf(job.words[1]); };
    const auto namesValue = [&] { return !place().name.empty(); };
    if (command == "list" && count <= 1)
        return tool.list(count == 0 ? playersKey : keyPath(withBackslashes(job.words[1])));
    if (command == "get" && count == 1 && namesValue())
        return tool.get(place());
    if (command == "set" && count == 2 && namesValue())
        return tool.set(place(), job.words[2], job.number);
    if (command == "delete" && count == 1 && !job.words[1].empty())
        return tool.remove(place());
    if (isHosts && count == 0)
        return runHosts(tool, job, err);
    for (const char *known : {"list", "get", "set", "delete", "hosts"})
        if (command == known)
            return misuse(err, command + " takes other words");
    return misuse(err, "there is no command " + command);
}

bool nameServer(const std::string &address, const std::string &registryFile, std::ostream &err) {
    Tool tool(registryFile, err, err);
    return tool.nameHosts(address) == done;
}

} // namespace velmora::registry_tool
