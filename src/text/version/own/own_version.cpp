// The program's own version record, in a section of its executable.

#include "text/version/version_block.h"
#include "version_numbers.h"

#include <algorithm>

namespace velmora::platform {

namespace {

#define VELMORA_DIGITS(number) VELMORA_WIDE(#number)
#define VELMORA_WIDE(text) u"" text
#define VELMORA_JOINED(major, minor, revision)                                                     \
    VELMORA_DIGITS(major) u"." VELMORA_DIGITS(minor) u"." VELMORA_DIGITS(revision)

constexpr char16_t versionText[] =
    VELMORA_JOINED(VELMORA_VERSION_MAJOR, VELMORA_VERSION_MINOR, VELMORA_VERSION_REVISION);

constexpr VersionString strings[] = {
    {u"CompanyName", u"Norvane"},    {u"FileDescription", u"Velmora"},
    {u"FileVersion", versionText},   {u"InternalName", u"zkPlayer"},
    {u"LegalCopyright", u"Norvane"}, {u"OriginalFilename", u"velmora"},
    {u"ProductName", u"Velmora"},    {u"ProductVersion", versionText},
};

constexpr VersionFields fields() {
    VersionFields result;
    result.fileVersion = {VELMORA_VERSION_MAJOR, VELMORA_VERSION_MINOR, VELMORA_VERSION_REVISION,
                          0};
    result.productVersion = result.fileVersion;
    result.strings = strings;
    return result;
}

constexpr auto draft = buildVersionBlock<4096>(fields());
static_assert(!draft.overflow);

constexpr std::array<unsigned char, draft.size> exact() {
    std::array<unsigned char, draft.size> bytes{};
    std::copy_n(draft.bytes.begin(), draft.size, bytes.begin());
    return bytes;
}

} // namespace

extern const std::array<unsigned char, draft.size> ownVersionRecord;

// `retain` keeps the linker from dropping a section that nothing refers to.
[[gnu::section(".velmora.version"), gnu::used,
  gnu::retain]] constinit const std::array<unsigned char, draft.size>
    ownVersionRecord = exact(); // NOLINT(cert-err58-cpp): made by the compiler

} // namespace velmora::platform
