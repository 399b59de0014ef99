#include "catalogue/introduce.h"

#include "base/text.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "platform/contracts/registry.h"
#include "text/ansi_conversion.h"

namespace velmora::catalogue {

bool introduce(const std::string &address, const std::string &registryFile) {
    const platform::AnsiConversion ansi([] { return std::u16string(); });
    platform::SqliteRegistry registry(registryFile, ansi);
    platform::RegistryHandle key = 0;
    if (registry.RegCreateKeyA(platform::HKEY_LOCAL_MACHINE, u"SOFTWARE\\Norvane\\zkPlayer\\hosts",
                               key) != 0)
        return false;
    bool written = true;
    for (const char16_t *name : {u"lrcSearch", u"lrcSiteA", u"lrcSiteB", u"songSearch", u"maker"}) {
        const std::u16string value = fromAscii(address);
        const auto bytes = static_cast<std::uint32_t>(value.size());
        written =
            registry.RegSetValueExA(key, name, platform::REG_SZ, value, bytes) == 0 && written;
    }
    registry.RegCloseKey(key);
    registry.flush();
    return written;
}

} // namespace velmora::catalogue
