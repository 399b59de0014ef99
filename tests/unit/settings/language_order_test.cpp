// Which of the language routines run before which.

#include "lyrics/lrcForm.h"
#include "settings/Language.h"
#include "settings/Language_Set.h"
#include "settings/setControl.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/instead.h"
#include "velmora.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace velmora {
namespace {

// Tells of each form that comes into being.
class TellingWindows : public fakes::FakeWindows {
public:
    using FakeWindows::FakeWindows;
    std::function<void(std::string_view name)> onForm;

    platform::HWND formMade(forms::Form &form) override {
        if (onForm)
            onForm(form.name());
        return FakeWindows::formMade(form);
    }
};

TEST(LanguageRoutines, TheMessagesAreFirstAndTheLyricsTextsFollowTheSettingsWindow) {
    fakes::FakePlatform other;
    TellingWindows told{other.clock};
    Velmora fresh(fakes::with(other.bundle(), {.windows = &told}));
    lrcForm &lyric = fresh.lrcForm();
    fresh.setControl().Language_Index = 1; // English
    std::map<std::string, bool, std::less<>> lyricFilledAt;
    told.onForm = [&](std::string_view name) {
        EXPECT_EQ(fresh.Language().msg_Error, u"Error") << name;
        lyricFilledAt.emplace(name, !lyric.lrcMissText.empty());
    };
    fresh.Language_Set().apply_Language();
    told.onForm = nullptr;
    EXPECT_FALSE(lyricFilledAt.at("Main"));
    EXPECT_FALSE(lyricFilledAt.at("playSetForm"));
    EXPECT_TRUE(lyricFilledAt.at("playInfo_Form"));
}

} // namespace
} // namespace velmora
