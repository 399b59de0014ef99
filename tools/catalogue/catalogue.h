#pragma once

// What is answered to which request, without any network.

#include "catalogue/folder.h"
#include "catalogue/library.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::catalogue {

struct Answer {
    unsigned status = 200;
    std::string type;
    std::string bytes;            // the body, unless
    std::optional<OpenFile> file; // it is a file
};

class Catalogue {
public:
    // Reads the folder. Raises std::system_error when it is none. `ownAddress` ("host:port") stands
    // in addresses when a request does not say how it came.
    Catalogue(const std::string &folder, std::string ownAddress);

    // `target` is the path and query of a request as it came, `host` its Host field. Paths are told
    // apart without regard to case, since the player knows them in upper or lower case alone.
    Answer answer(std::string_view target, std::string_view host);

    // Only names of this machine may stand in the Host field: no page of the web may then use a
    // browser here to read the catalogue under a name of its own.
    void acceptOnlyThisMachine() { onlyThisMachine_ = true; }
    void setOwnAddress(std::string address) { ownAddress_ = std::move(address); }

    const Library &library() const noexcept { return library_; }

private:
    void refresh();
    std::u16string baseFor(std::string_view host) const;
    Answer route(const std::string &path, std::string_view query, std::u16string_view base);
    Answer lyric(std::string_view id) const;
    Answer song(std::string_view name) const;
    Answer program() const;

    std::string ownAddress_;
    bool onlyThisMachine_ = false;
    Folder folder_;
    Library library_;
    std::chrono::steady_clock::time_point refreshed_;
};

// The words of a search: what stands behind "NAME=" (at the query's beginning or behind "&") up to
// the last occurrence of `end`, or to its own end. Words may hold every sign, "&" too.
std::u16string searchWords(std::string_view query, std::string_view name, std::string_view end);

} // namespace velmora::catalogue
