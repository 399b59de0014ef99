#pragma once

// A registry's file in a folder of its own.

#include "platform/backends/registry/sqlite_registry.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

namespace velmora::platform {

inline constexpr char16_t key[] = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";

struct SqliteFile : testing::Test {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    std::string file = folder.bytes("config/velmora/registry.sqlite");

    static std::int32_t set(SqliteRegistry &registry, std::u16string_view name,
                            std::u16string_view text, std::uint32_t bytes) {
        RegistryHandle handle = 0;
        const auto error = registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle);
        if (error != ERROR_SUCCESS)
            return error;
        const auto answer = registry.RegSetValueExA(handle, name, REG_SZ, text, bytes);
        registry.RegCloseKey(handle);
        return answer;
    }
    static std::int32_t set(SqliteRegistry &registry, std::u16string_view name,
                            std::u16string_view text) {
        return set(registry, name, text, static_cast<std::uint32_t>(text.size()));
    }
    static std::optional<std::u16string> get(SqliteRegistry &registry, std::u16string_view name) {
        return registry.GetObject(u"x:StdRegProv")->GetStringValue(HKEY_LOCAL_MACHINE, key, name);
    }
    static SqliteRegistry::Value stored(SqliteRegistry &registry, std::u16string_view name) {
        return registry.stored(HKEY_LOCAL_MACHINE, key, name).value_or(SqliteRegistry::Value{});
    }
    std::vector<std::string> damaged() const {
        std::vector<std::string> found;
        for (const auto &entry :
             std::filesystem::directory_iterator(folder.bytes("config/velmora")))
            if (entry.path().filename().string().find(".damaged-") != std::string::npos)
                found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }
    void makeSound() {
        SqliteRegistry registry(file, ansi);
        ASSERT_EQ(set(registry, u"v", u"kept"), ERROR_SUCCESS);
    }
};

} // namespace velmora::platform
