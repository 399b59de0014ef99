// The rules of keys and values: the real registry and its fake keep the same ones.

#include "platform/backends/registry/sqlite_registry.h"

#include "base/run_time_error.h"
#include "tests/fakes/fake_ansi.h"
#include "tests/fakes/fake_registry.h"
#include "tests/unit/linux/temp_folder.h"

#include <gtest/gtest.h>

namespace velmora::platform {
namespace {

constexpr char16_t moniker[] =
    u"winmgmts:{impersonationLevel=impersonate}!\\\\.\\root\\default:StdRegProv";
constexpr char16_t playSet[] = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";

template <typename Kind> struct Fixture;

template <> struct Fixture<SqliteRegistry> {
    TempFolder folder;
    fakes::FakeAnsi ansi;
    SqliteRegistry registry{folder.bytes("registry.sqlite"), ansi};
};
template <> struct Fixture<fakes::FakeRegistry> {
    fakes::FakeAnsi ansi;
    fakes::FakeRegistry registry{ansi};
};

template <typename Kind> struct RegistryRules : testing::Test, Fixture<Kind> {
    RegistryHandle open(std::u16string_view key = playSet) {
        RegistryHandle handle = 0;
        EXPECT_EQ(this->registry.RegCreateKeyA(HKEY_LOCAL_MACHINE, key, handle), ERROR_SUCCESS);
        return handle;
    }
    std::int32_t set(std::u16string_view name, std::u16string_view text, std::uint32_t bytes) {
        const RegistryHandle handle = open();
        const auto answer = this->registry.RegSetValueExA(handle, name, REG_SZ, text, bytes);
        EXPECT_EQ(this->registry.RegCloseKey(handle), ERROR_SUCCESS);
        return answer;
    }
    std::int32_t set(std::u16string_view name, std::uint32_t number) {
        const RegistryHandle handle = open();
        const auto answer = this->registry.RegSetValueExA(handle, name, number);
        EXPECT_EQ(this->registry.RegCloseKey(handle), ERROR_SUCCESS);
        return answer;
    }
    std::optional<std::u16string> text(std::u16string_view name,
                                       std::u16string_view key = playSet) {
        return this->registry.GetObject(moniker)->GetStringValue(HKEY_LOCAL_MACHINE, key, name);
    }
    std::optional<std::uint32_t> number(std::u16string_view name) {
        return this->registry.GetObject(moniker)->GetDWORDValue(HKEY_LOCAL_MACHINE, playSet, name);
    }
};

using Kinds = testing::Types<SqliteRegistry, fakes::FakeRegistry>;
TYPED_TEST_SUITE(RegistryRules, Kinds);

TYPED_TEST(RegistryRules, keepTextsAndNumbers) {
    EXPECT_EQ(this->set(u"LrcSaveFolder", u"/home/音乐", 13), ERROR_SUCCESS);
    EXPECT_EQ(this->set(u"Desktop_Lrc_Size", 36), ERROR_SUCCESS);
    EXPECT_EQ(this->text(u"LrcSaveFolder"), u"/home/音乐");
    EXPECT_EQ(this->number(u"Desktop_Lrc_Size"), 36U);
}

TYPED_TEST(RegistryRules, keepEveryNumberOfThirtyTwoBits) {
    for (const std::uint32_t value : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        this->set(u"n", value);
        EXPECT_EQ(this->number(u"n"), value);
    }
}

TYPED_TEST(RegistryRules, ignoreCaseInKeysAndNames) {
    this->set(u"PlayMode", u"1", 2);
    EXPECT_EQ(this->text(u"PLAYMODE"), u"1");
    EXPECT_EQ(this->text(u"playmode", u"software\\NORVANE\\ZKplayer\\PLAYSET"), u"1");
    this->set(u"playMODE", u"2", 2);
    EXPECT_EQ(this->text(u"PlayMode"), u"2");
}

TYPED_TEST(RegistryRules, answerAbsenceForWhatIsMissingOrOfAnotherType) {
    EXPECT_EQ(this->text(u"missing"), std::nullopt);
    this->set(u"text", u"5", 2);
    this->set(u"number", 5);
    EXPECT_EQ(this->number(u"text"), std::nullopt);
    EXPECT_EQ(this->text(u"number"), std::nullopt);
    EXPECT_EQ(this->text(u"missing"), std::nullopt);
    EXPECT_EQ(this->text(u"text", u"SOFTWARE\\Nobody"), std::nullopt);
    EXPECT_EQ(this->text(u"text", u"SOFTWARE"), std::nullopt);
    EXPECT_EQ(this->text(u"text", u""), std::nullopt);
}

TYPED_TEST(RegistryRules, replaceAValueAndItsType) {
    this->set(u"v", u"text", 4);
    this->set(u"v", 7);
    EXPECT_EQ(this->text(u"v"), std::nullopt);
    EXPECT_EQ(this->number(u"v"), 7U);
    this->set(u"v", u"again", 5);
    EXPECT_EQ(this->text(u"v"), u"again");
    EXPECT_EQ(this->number(u"v"), std::nullopt);
}

TYPED_TEST(RegistryRules, zeroBytesAreTheEmptyText) {
    this->set(u"v", u"", 0);
    EXPECT_EQ(this->text(u"v"), u"");
    this->set(u"v", u"not written", 0);
    EXPECT_EQ(this->text(u"v"), u"");
}

TYPED_TEST(RegistryRules, cutATextAtItsByteCount) {
    this->set(u"v", u"abcdef", 3);
    EXPECT_EQ(this->text(u"v"), u"abc");
    this->set(u"v", u"中国", 3);
    EXPECT_EQ(this->text(u"v"), u"中");
}

TYPED_TEST(RegistryRules, endATextAtItsFirstNul) {
    this->set(u"v", std::u16string_view(u"ab\0cd", 5), 5);
    EXPECT_EQ(this->text(u"v"), u"ab");
    this->set(u"v", u"1", 2); // the count takes in the terminator
    EXPECT_EQ(this->text(u"v"), u"1");
}

TYPED_TEST(RegistryRules, keepFileNamesOfAnyBytes) {
    this->set(u"lastPlayFileName", u"/m/\xDCFF\xDC0A 曲.mp3", 18);
    EXPECT_EQ(this->text(u"lastPlayFileName"), u"/m/\xDCFF\xDC0A 曲.mp3");
}

TYPED_TEST(RegistryRules, makeAKeyWithItsParentsAndOpenWhatIsThere) {
    const RegistryHandle first = this->open();
    const RegistryHandle second = this->open();
    EXPECT_NE(first, 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(this->registry.RegSetValueExA(second, u"v", 1U), ERROR_SUCCESS);
    this->open(u"SOFTWARE\\Norvane\\zkPlayer\\playSet\\below");
    EXPECT_EQ(this->number(u"v"), 1U);
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Norvane"),
              ERROR_ACCESS_DENIED);
}

TYPED_TEST(RegistryRules, refuseAHandleThatIsNotOpen) {
    EXPECT_EQ(this->registry.RegSetValueExA(1234, u"v", 1U), ERROR_INVALID_HANDLE);
    EXPECT_EQ(this->registry.RegSetValueExA(1234, u"v", REG_SZ, u"x", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(this->registry.RegCloseKey(1234), ERROR_INVALID_HANDLE);
    EXPECT_EQ(this->registry.RegFlushKey(1234), ERROR_INVALID_HANDLE);
    const RegistryHandle handle = this->open();
    EXPECT_EQ(this->registry.RegFlushKey(handle), ERROR_SUCCESS);
    EXPECT_EQ(this->registry.RegCloseKey(handle), ERROR_SUCCESS);
    EXPECT_EQ(this->registry.RegCloseKey(handle), ERROR_INVALID_HANDLE);
    EXPECT_EQ(this->registry.RegFlushKey(handle), ERROR_INVALID_HANDLE);
    EXPECT_EQ(this->registry.RegSetValueExA(handle, u"v", 1U), ERROR_INVALID_HANDLE);
}

TYPED_TEST(RegistryRules, deleteAKeyWithItsValues) {
    this->set(u"v", 1);
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), ERROR_SUCCESS);
    EXPECT_EQ(this->number(u"v"), std::nullopt);
    this->open();
    EXPECT_EQ(this->number(u"v"), std::nullopt);
    EXPECT_EQ(
        this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, u"software\\norvane\\ZKPLAYER\\Playset"),
        ERROR_SUCCESS);
}

TYPED_TEST(RegistryRules, deletingAnAbsentKeyAnswersTwo) {
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), 2);
    this->open();
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), 0);
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), 2);
}

TYPED_TEST(RegistryRules, aKeyWithSubKeysStaysWithItsValues) {
    this->set(u"v", 1);
    this->open(u"SOFTWARE\\Norvane\\zkPlayer\\playSet\\below");
    this->open(u"SOFTWARE\\Norvane\\zkPlayer\\playSet2"); // no sub-key, only a longer name
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), ERROR_ACCESS_DENIED);
    EXPECT_EQ(this->number(u"v"), 1U);
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE,
                                           u"SOFTWARE\\Norvane\\zkPlayer\\playSet\\below"),
              ERROR_SUCCESS);
    EXPECT_EQ(this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet), ERROR_SUCCESS);
}

TYPED_TEST(RegistryRules, writingThroughAHandleOfADeletedKeyFails) {
    const RegistryHandle handle = this->open();
    this->registry.RegDeleteKeyA(HKEY_LOCAL_MACHINE, playSet);
    EXPECT_NE(this->registry.RegSetValueExA(handle, u"v", 1U), ERROR_SUCCESS);
    EXPECT_EQ(this->number(u"v"), std::nullopt);
}

TYPED_TEST(RegistryRules, keepHivesApart) {
    this->set(u"v", 1);
    constexpr std::uint32_t currentUser = 0x80000001;
    EXPECT_EQ(this->registry.GetObject(moniker)->GetDWORDValue(currentUser, playSet, u"v"),
              std::nullopt);
    EXPECT_EQ(this->registry.RegDeleteKeyA(currentUser, playSet), ERROR_FILE_NOT_FOUND);
}

} // namespace
} // namespace velmora::platform
