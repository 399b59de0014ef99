#pragma once

// What is answered to which request, without any network.

#include "catalogue/folder.h"
#include "catalogue/library.h"
#include "catalogue/maker_files.h"
#include "catalogue/words.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::catalogue {

struct Answer {
    unsigned status = 200;
    std::string type;
    std::string bytes;                                       // the body, unless
    std::optional<OpenFile> file;                            // it is a file
    std::vector<std::pair<std::string, std::string>> fields; // of the header, besides the type
};

Answer plainAnswer(unsigned status, std::string text);

class Catalogue {
public:
    // Raises std::system_error when it is no folder. `ownAddress` ("host:port") stands in addresses
    // when a request does not say how it came. Serves no song before `show` or `readNow`.
    Catalogue(const std::string &folder, std::string ownAddress);

    const Folder &folder() const noexcept { return folder_; }
    // What is served from now on, and what is; from any thread. Never null.
    void show(std::shared_ptr<const Library> library);
    std::shared_ptr<const Library> library() const;
    // Reads the folder here and now, and shows that.
    void readNow();

    // Whoever can write into the music offers no programs: those come from a folder of their own,
    // with a catalogue.ini of its own. Answers what is offered now. Raises as above.
    std::optional<Offer> offerUpdatesFrom(const std::string &folder);
    // Whether the folder of music holds an offer, which nobody heeds.
    bool hasUnheededOffer() const;

    // `target` is the path and query of a request as it came, `host` its Host field. Paths are told
    // apart without regard to case, since the player knows them in upper or lower case alone.
    Answer answer(std::string_view target, std::string_view host,
                  std::string_view acceptLanguage = "") const;

    // Only names of this machine may stand in the Host field. Otherwise names that no page of the
    // web can have do: numbers, names without a dot or of the kind "nas.local", and those accepted
    // here. A page could else use a browser of the household to read the catalogue under its own
    // name.
    void acceptOnlyThisMachine() { onlyThisMachine_ = true; }
    void acceptName(const std::string &name);
    // `scheme` is "http://" or "https://".
    void setOwnAddress(std::string scheme, std::string address);

private:
    std::u16string baseFor(std::string_view host) const;
    Answer route(const std::string &path, std::string_view query, std::u16string_view base,
                 Language language) const;
    Answer lyric(const Library &library, std::string_view id) const;
    Answer song(const Library &library, std::string_view name) const;
    Answer program() const;
    std::optional<Offer> offer() const;
    platform::IniText updateSettings() const;

    bool accepts(std::string_view host) const;

    std::string scheme_ = "http://";
    std::string ownAddress_;
    std::vector<std::string> names_; // in small letters
    bool onlyThisMachine_ = false;
    Folder folder_;
    std::optional<Folder> updates_;
    mutable std::mutex mutex_;
    std::shared_ptr<const Library> library_ = std::make_shared<const Library>();
};

// The words of a search: what stands behind "NAME=" (at the query's beginning or behind "&") up to
// the last occurrence of `end`, or to its own end. Words may hold every sign, "&" too.
std::u16string searchWords(std::string_view query, std::string_view name, std::string_view end);

} // namespace velmora::catalogue
