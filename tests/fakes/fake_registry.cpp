#include "tests/fakes/fake_registry.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"

namespace velmora::fakes {

using namespace platform;

// --- what is stored ------------------------------------------------------------------------------

std::u16string FakeRegistry::keyOf(std::uint32_t hive, std::u16string_view subKey) {
    return decimal(hive) + u"\\" + upper(subKey);
}

void FakeRegistry::createWithParents(std::uint32_t hive, std::u16string_view subKey) {
    for (std::size_t i = 0; i < subKey.size(); ++i)
        if (subKey[i] == u'\\')
            keys_[keyOf(hive, subKey.substr(0, i))];
    keys_[keyOf(hive, subKey)];
}

void FakeRegistry::addKey(std::u16string_view subKey) {
    createWithParents(HKEY_LOCAL_MACHINE, subKey);
}

void FakeRegistry::setText(std::u16string_view subKey, std::u16string_view name,
                           std::u16string_view text) {
    addKey(subKey);
    keys_[keyOf(HKEY_LOCAL_MACHINE, subKey)][upper(name)] = {
        REG_SZ, static_cast<std::uint32_t>(ansi_.byteCount(text)), std::u16string(text), 0};
}

void FakeRegistry::setNumber(std::u16string_view subKey, std::u16string_view name,
                             std::uint32_t number) {
    addKey(subKey);
    keys_[keyOf(HKEY_LOCAL_MACHINE, subKey)][upper(name)] = {REG_DWORD, 4, {}, number};
}

void FakeRegistry::removeValue(std::u16string_view subKey, std::u16string_view name) {
    const auto key = keys_.find(keyOf(HKEY_LOCAL_MACHINE, subKey));
    if (key != keys_.end())
        key->second.erase(upper(name));
}

bool FakeRegistry::hasKey(std::u16string_view subKey) const {
    return keys_.count(keyOf(HKEY_LOCAL_MACHINE, subKey)) != 0;
}

const FakeRegistry::Value *FakeRegistry::find(std::uint32_t hive, std::u16string_view subKey,
                                              std::u16string_view name) const {
    const auto key = keys_.find(keyOf(hive, subKey));
    if (key == keys_.end())
        return nullptr;
    const auto found = key->second.find(upper(name));
    return found == key->second.end() ? nullptr : &found->second;
}

std::optional<FakeRegistry::Value> FakeRegistry::value(std::u16string_view subKey,
                                                       std::u16string_view name) const {
    const Value *found = find(HKEY_LOCAL_MACHINE, subKey, name);
    return found ? std::optional(*found) : std::nullopt;
}

FakeRegistry::Values *FakeRegistry::valuesOf(RegistryHandle handle) {
    const auto open = handles_.find(handle);
    if (open == handles_.end())
        return nullptr;
    const auto key = keys_.find(open->second);
    return key == keys_.end() ? nullptr : &key->second;
}

// The longest beginning whose ANSI form fits into the byte count.
std::u16string FakeRegistry::cut(std::u16string_view text, std::uint32_t byteCount) const {
    while (ansi_.byteCount(text) > byteCount)
        text.remove_suffix(1);
    return std::u16string(text);
}

// --- the contract --------------------------------------------------------------------------------

std::int32_t FakeRegistry::RegCreateKeyA(std::uint32_t hive, std::u16string_view subKey,
                                         RegistryHandle &handle) {
    log_.push_back(u"create " + std::u16string(subKey));
    if (writeError_ != ERROR_SUCCESS)
        return writeError_;
    createWithParents(hive, subKey);
    handle = nextHandle_;
    nextHandle_ += 4;
    handles_[handle] = keyOf(hive, subKey);
    return ERROR_SUCCESS;
}

std::int32_t FakeRegistry::RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                          std::uint32_t type, std::u16string_view text,
                                          std::uint32_t byteCount) {
    log_.push_back(u"set " + std::u16string(valueName) + (type == REG_SZ ? u" SZ " : u" ? ") +
                   decimal(byteCount) + u" " + std::u16string(text));
    if (writeError_ != ERROR_SUCCESS)
        return writeError_;
    Values *values = valuesOf(handle);
    if (!values)
        return ERROR_INVALID_HANDLE;
    (*values)[upper(valueName)] = {type, byteCount, cut(text, byteCount), 0};
    return ERROR_SUCCESS;
}

std::int32_t FakeRegistry::RegSetValueExA(RegistryHandle handle, std::u16string_view valueName,
                                          std::uint32_t value) {
    log_.push_back(u"set " + std::u16string(valueName) + u" DWORD " + decimal(value));
    if (writeError_ != ERROR_SUCCESS)
        return writeError_;
    Values *values = valuesOf(handle);
    if (!values)
        return ERROR_INVALID_HANDLE;
    (*values)[upper(valueName)] = {REG_DWORD, 4, {}, value};
    return ERROR_SUCCESS;
}

std::int32_t FakeRegistry::RegFlushKey(RegistryHandle handle) {
    log_.emplace_back(u"flush");
    return handles_.count(handle) != 0 ? writeError_ : ERROR_INVALID_HANDLE;
}

std::int32_t FakeRegistry::RegCloseKey(RegistryHandle handle) {
    log_.emplace_back(u"close");
    return handles_.erase(handle) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::int32_t FakeRegistry::RegDeleteKeyA(std::uint32_t hive, std::u16string_view subKey) {
    log_.push_back(u"delete " + std::u16string(subKey));
    if (writeError_ != ERROR_SUCCESS)
        return writeError_;
    const std::u16string key = keyOf(hive, subKey);
    const auto found = keys_.find(key);
    if (found == keys_.end())
        return ERROR_FILE_NOT_FOUND;
    const auto below = keys_.lower_bound(key + u"\\");
    if (below != keys_.end() && startsWith(below->first, key + u"\\"))
        return ERROR_ACCESS_DENIED;
    keys_.erase(found);
    return ERROR_SUCCESS;
}

class FakeRegistry::Provider : public StdRegProv {
public:
    explicit Provider(FakeRegistry &registry) : registry_(registry) {}

    std::optional<std::u16string> GetStringValue(std::uint32_t hive, std::u16string_view subKey,
                                                 std::u16string_view valueName) override {
        const Value *value = read(hive, subKey, valueName, REG_SZ);
        return value ? std::optional<std::u16string>(untilNul(value->text)) : std::nullopt;
    }
    std::optional<std::uint32_t> GetDWORDValue(std::uint32_t hive, std::u16string_view subKey,
                                               std::u16string_view valueName) override {
        const Value *value = read(hive, subKey, valueName, REG_DWORD);
        return value ? std::optional(value->number) : std::nullopt;
    }

private:
    const Value *read(std::uint32_t hive, std::u16string_view subKey, std::u16string_view name,
                      std::uint32_t type) {
        registry_.log_.push_back(u"read " + std::u16string(subKey) + u" " + std::u16string(name));
        const Value *value = registry_.find(hive, subKey, name);
        return value && value->type == type ? value : nullptr;
    }

    FakeRegistry &registry_;
};

std::shared_ptr<StdRegProv> FakeRegistry::GetObject(std::u16string_view moniker) {
    log_.emplace_back(u"provider");
    monikers_.emplace_back(moniker);
    if (providerMissing_)
        raise(ErrorNumber::General);
    return std::make_shared<Provider>(*this);
}

} // namespace velmora::fakes
