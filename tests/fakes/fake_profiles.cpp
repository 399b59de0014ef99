#include "tests/fakes/fake_profiles.h"

#include "base/numbers.h"

namespace velmora::fakes {

std::u16string FakeProfiles::GetPrivateProfileStringA(std::u16string_view section,
                                                      std::u16string_view key,
                                                      std::u16string_view fallback,
                                                      std::size_t size, std::u16string_view file) {
    log.push_back(u"read " + std::u16string(section) + u" " + std::u16string(key) + u" " +
                  std::u16string(fallback) + u" " + decimal(static_cast<std::int64_t>(size)) +
                  u" " + std::u16string(file));
    return real_.GetPrivateProfileStringA(section, key, fallback, size, file);
}

std::vector<std::u16string> FakeProfiles::GetPrivateProfileKeysA(std::u16string_view section,
                                                                 std::u16string_view file) {
    log.push_back(u"keys " + std::u16string(section) + u" " + std::u16string(file));
    return real_.GetPrivateProfileKeysA(section, file);
}

bool FakeProfiles::WritePrivateProfileStringA(std::u16string_view section, std::u16string_view key,
                                              std::optional<std::u16string_view> value,
                                              std::u16string_view file) {
    log.push_back(u"write " + std::u16string(section) + u" " + std::u16string(key) + u" " +
                  std::u16string(value.value_or(u"-")) + u" " + std::u16string(file));
    return !writesFail && real_.WritePrivateProfileStringA(section, key, value, file);
}

std::unique_ptr<platform::Profiles::Hold> FakeProfiles::holdFile(std::u16string_view file) {
    class Noted : public Hold {
    public:
        Noted(std::vector<std::u16string> &log, std::u16string_view file,
              std::unique_ptr<Hold> real)
            : log_(log), file_(file), real_(std::move(real)) {
            log_.push_back(u"hold " + file_);
        }
        ~Noted() override { log_.push_back(u"release " + file_); }

    private:
        std::vector<std::u16string> &log_;
        std::u16string file_;
        std::unique_ptr<Hold> real_;
    };
    return std::make_unique<Noted>(log, file, real_.holdFile(file));
}

std::u16string FakeProfiles::StrFormatByteSizeA(std::int32_t size) {
    log.push_back(u"size " + decimal(size));
    return real_.StrFormatByteSizeA(size);
}

} // namespace velmora::fakes
