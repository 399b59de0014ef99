#pragma once

// The two INI files that the player asks its maker for: what is new, and whether there is a newer
// program. A file "catalogue.ini" may say what stands in them: in the folder of music what is new,
// in the folder of updates, which is another one, what is offered:
//
//     [welcome]
//     title, provider, providerLink     the heading and who is behind it
//     banner0, banner1, ...             "text" or "text|address"
//     tab0, tab1, tab2                  captions
//     tab0_line0, tab0_line1, ...       "text" or "text|address"; instead of what is in the library
//
//     [update]
//     version=3.1.0                     three numbers
//     program=path/below/the/folder     a program file
//     chinese, english, french, japanese   notes, lines between "|"

#include "catalogue/library.h"
#include "text/ini_text.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora::catalogue {

// Absent answers are those of an empty file.
platform::IniText readSettings(const Folder &folder);

// A program file offered for updating: a name that is a program's on this system or on Windows.
struct Offer {
    std::u16string version; // three numbers
    std::string path;
};
std::optional<Offer> offerOf(const platform::IniText &settings, const Folder &folder);

// Both are UTF-8 with CR LF; every value is one line of at most 999 units.
std::string welcomeFile(std::u16string_view base, const Library &library,
                        const platform::IniText &settings);
// Without an offer: the version of this project itself, which is not newer than any player's.
std::string updateFile(std::u16string_view base, const platform::IniText &settings,
                       const std::optional<Offer> &offer);

} // namespace velmora::catalogue
