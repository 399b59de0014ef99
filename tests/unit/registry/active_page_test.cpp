// The code page that a person sets in the registry, and what is read and written with it.

#include "platform/backends/registry/active_page.h"

#include "platform/backends/linux/linux.h"
#include "platform/backends/registry/sqlite_registry.h"
#include "tests/fakes/fake_registry.h"
#include "tests/unit/registry/sqlite_file.h"

namespace velmora::platform {
namespace {

constexpr auto pageKey = u"SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage";

TEST(ActivePage, isTheTextValueAcpOfItsKey) {
    fakes::FakeAnsi ansi;
    fakes::FakeRegistry registry(ansi);
    EXPECT_EQ(activePage(registry), u"");
    registry.setText(pageKey, u"ACP", u"932");
    EXPECT_EQ(activePage(registry), u"932");
}

TEST(ActivePage, isNoneWhereTheValueIsANumberOrTheRegistryCannotBeAsked) {
    fakes::FakeAnsi ansi;
    fakes::FakeRegistry registry(ansi);
    registry.setNumber(pageKey, u"ACP", 932);
    EXPECT_EQ(activePage(registry), u"");
    registry.setText(pageKey, u"ACP", u"932");
    registry.setProviderMissing(true);
    EXPECT_EQ(activePage(registry), u"");
}

// As the start of the program puts them together: the registry's own texts go through the
// conversion that asks it.
struct StoredPage : SqliteFile {
    void store(std::u16string_view page) {
        SqliteRegistry registry(file, ansi);
        RegistryHandle handle = 0;
        ASSERT_EQ(registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, pageKey, handle), ERROR_SUCCESS);
        ASSERT_EQ(registry.RegSetValueExA(handle, u"ACP", REG_SZ, page,
                                          static_cast<std::uint32_t>(page.size())),
                  ERROR_SUCCESS);
        registry.RegCloseKey(handle);
    }
};

TEST_F(StoredPage, isReadAndWrittenFromTheNextStartOn) {
    store(u"932");
    SqliteRegistry *asked = nullptr;
    const auto text = makeAnsiText([&] { return activePage(*asked); }, "zh_CN.UTF-8");
    SqliteRegistry registry(file, *text);
    asked = &registry;
    set(registry, u"v", u"日本", 4);
    EXPECT_EQ(get(registry, u"v"), u"日本");
    EXPECT_EQ(text->encode(u"日本"), "\x93\xFA\x96\x7B");
    EXPECT_EQ(text->decode("\x93\xFA\x96\x7B"), u"日本");
    EXPECT_EQ(text->decode("日本"), u"日本");
}

TEST_F(StoredPage, comesBeforeTheLanguagesAnd65001IsNone) {
    SqliteRegistry *asked = nullptr;
    const auto read = [&](const char *locale) {
        SqliteRegistry registry(file, ansi);
        asked = &registry;
        return makeAnsiText([&] { return activePage(*asked); }, locale)->decode("\xC9toile");
    };
    EXPECT_EQ(read("fr_FR.UTF-8"), u"Étoile");
    store(u"1252");
    EXPECT_EQ(read("zh_CN.UTF-8"), u"Étoile");
    store(u"65001");
    EXPECT_EQ(read("fr_FR.UTF-8"), u"\xFFFDtoile");
}

} // namespace
} // namespace velmora::platform
