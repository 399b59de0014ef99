#pragma once

// What the process that reads tags says to the server, in one message.

#include "catalogue/tags.h"

#include <string>

namespace velmora::catalogue {

std::string sayTags(const Tags &tags);
// A file may have taken over the one that says it: of anything become texts as `cutTag` and
// `oneLine` leave them.
Tags tagsSaid(const std::string &bytes);

} // namespace velmora::catalogue
