#pragma once

// The pages for people: whole without a script, good on a phone and by keyboard.

#include "catalogue/folder.h"
#include "catalogue/library.h"
#include "catalogue/words.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora::catalogue {

struct PageAsked {
    const Library &library;
    const Folder &folder;
    Language language;
};

// The page of a path in small letters ("/", "/search", "/albums", "/album/ID", "/folder",
// "/listen/ID"); absent where there is none.
std::optional<std::u16string> browserPage(const PageAsked &asked, std::string_view path,
                                          std::string_view query);

// The bytes behind "NAME=" in a query; empty where there are none.
std::string queryValue(std::string_view query, std::string_view name);

} // namespace velmora::catalogue
