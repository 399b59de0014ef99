#include "platform/backends/registry/active_page.h"

#include "base/run_time_error.h"

namespace velmora::platform {

std::u16string activePage(Registry &registry) {
    std::u16string page;
    passOver([&] {
        page = registry.GetObject(u"StdRegProv")
                   ->GetStringValue(HKEY_LOCAL_MACHINE,
                                    u"SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", u"ACP")
                   .value_or(std::u16string());
    });
    return page;
}

} // namespace velmora::platform
