#pragma once

// The registry in memory, with a log of what was asked of it.

#include "platform/contracts/ansi.h"
#include "platform/contracts/registry.h"

#include <map>
#include <string>
#include <vector>

namespace velmora::fakes {

class FakeRegistry : public platform::Registry {
public:
    struct Value {
        std::uint32_t type = platform::REG_SZ;
        std::uint32_t byteCount = 0;
        std::u16string text;
        std::uint32_t number = 0;
        friend bool operator==(const Value &, const Value &) = default;
    };

    explicit FakeRegistry(const platform::AnsiText &ansi) : ansi_(ansi) {}

    // --- what is stored, below HKEY_LOCAL_MACHINE ---
    void setText(std::u16string_view subKey, std::u16string_view name, std::u16string_view text);
    void setNumber(std::u16string_view subKey, std::u16string_view name, std::uint32_t number);
    void addKey(std::u16string_view subKey);
    void removeValue(std::u16string_view subKey, std::u16string_view name);
    bool hasKey(std::u16string_view subKey) const;
    std::optional<Value> value(std::u16string_view subKey, std::u16string_view name) const;

    // --- failures, until taken back ---
    void failWrites(std::int32_t code) { writeError_ = code; } // ERROR_SUCCESS: none
    void setProviderMissing(bool missing) { providerMissing_ = missing; }

    // --- what was asked ---
    // In order: "create KEY", "set NAME SZ COUNT TEXT", "set NAME DWORD NUMBER", "flush",
    // "close", "delete KEY", "provider", "read KEY NAME". Failed ones too.
    const std::vector<std::u16string> &log() const { return log_; }
    void clearLog() { log_.clear(); }
    std::size_t openHandles() const { return handles_.size(); }
    const std::vector<std::u16string> &monikers() const { return monikers_; }

    // --- the contract ---
    std::int32_t RegCreateKeyA(std::uint32_t hive, std::u16string_view subKey,
                               platform::RegistryHandle &handle) override;
    std::int32_t RegSetValueExA(platform::RegistryHandle handle, std::u16string_view valueName,
                                std::uint32_t type, std::u16string_view text,
                                std::uint32_t byteCount) override;
    std::int32_t RegSetValueExA(platform::RegistryHandle handle, std::u16string_view valueName,
                                std::uint32_t value) override;
    std::int32_t RegFlushKey(platform::RegistryHandle handle) override;
    std::int32_t RegCloseKey(platform::RegistryHandle handle) override;
    std::int32_t RegDeleteKeyA(std::uint32_t hive, std::u16string_view subKey) override;
    std::shared_ptr<platform::StdRegProv> GetObject(std::u16string_view moniker) override;

private:
    class Provider;
    using Values = std::map<std::u16string, Value>; // by upper-cased name

    const Value *find(std::uint32_t hive, std::u16string_view subKey,
                      std::u16string_view name) const;
    Values *valuesOf(platform::RegistryHandle handle);
    static std::u16string keyOf(std::uint32_t hive, std::u16string_view subKey);
    void createWithParents(std::uint32_t hive, std::u16string_view subKey);
    std::u16string cut(std::u16string_view text, std::uint32_t byteCount) const;

    const platform::AnsiText &ansi_;
    std::map<std::u16string, Values> keys_; // by hive and upper-cased path
    std::map<platform::RegistryHandle, std::u16string> handles_;
    platform::RegistryHandle nextHandle_ = 0x40;
    std::int32_t writeError_ = platform::ERROR_SUCCESS;
    bool providerMissing_ = false;
    std::vector<std::u16string> log_;
    std::vector<std::u16string> monikers_;
};

} // namespace velmora::fakes
