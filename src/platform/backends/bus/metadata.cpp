#include "platform/backends/bus/metadata.h"

#include "base/text.h"
#include "text/path_text.h"

#include <algorithm>

namespace velmora::platform::bus {

namespace {

constexpr std::size_t longestLyric = std::size_t{256} * 1024;

// Writes entries of a dictionary, and nothing more once one has failed.
class Dictionary {
public:
    Dictionary(const BusLibrary &library, sd_bus_message *message)
        : library_(library), message_(message), done_(library.openContainer(message, 'a', "{sv}")) {
    }

    template <typename... Values>
    void add(const char *key, const char *type, const Values &...values) {
        if (done_ >= 0)
            done_ = library_.append(message_, "{sv}", key, type, values...);
    }
    void text(const char *key, const std::string &value) {
        if (!value.empty())
            add(key, "s", value.c_str());
    }
    void list(const char *key, const std::string &value) {
        if (!value.empty())
            add(key, "as", 1, value.c_str());
    }
    int end() { return done_ < 0 ? done_ : library_.closeContainer(message_); }

private:
    const BusLibrary &library_;
    sd_bus_message *message_;
    int done_;
};

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

bool isYear(std::string_view text) {
    return text.size() == 4 &&
           std::all_of(
               text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

std::string busText(std::u16string_view text, std::size_t most) {
    std::string bytes = toUtf8(untilNul(text));
    if (bytes.size() <= most)
        return bytes;
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(bytes[end]) & 0xC0U) == 0x80U)
        --end;
    bytes.resize(end);
    return bytes;
}

std::string fileUri(std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : path) {
        if (isPlain(c)) {
            uri.push_back(c);
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        uri.push_back('%');
        uri.push_back(digits[byte >> 4U]);
        uri.push_back(digits[byte & 15U]);
    }
    return uri;
}

std::string trackPath(std::uint32_t track) {
    return track == 0 ? "/org/mpris/MediaPlayer2/TrackList/NoTrack"
                      : "/example/norvane/velmora/track/" + std::to_string(track);
}

int appendTrack(const BusLibrary &library, sd_bus_message *message, const NowPlaying &now,
                const std::string &artUri) {
    Dictionary track(library, message);
    track.add("mpris:trackid", "o", trackPath(now.track).c_str());
    if (now.lengthMs > 0)
        track.add("mpris:length", "x", std::int64_t{now.lengthMs} * 1000);
    track.text("mpris:artUrl", artUri);
    track.text("xesam:title", busText(now.title));
    track.list("xesam:artist", busText(now.artist));
    track.text("xesam:album", busText(now.album));
    track.list("xesam:genre", busText(now.genre));
    track.list("xesam:comment", busText(now.comment));
    if (const std::string year = busText(now.year); isYear(year))
        track.text("xesam:contentCreated", year);
    if (const std::string path = pathBytes(now.path); path.starts_with('/'))
        track.text("xesam:url", fileUri(path));
    track.text("xesam:asText", busText(now.lyric, longestLyric));
    return track.end();
}

} // namespace velmora::platform::bus
