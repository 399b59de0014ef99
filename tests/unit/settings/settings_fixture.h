#pragma once

// A program whose registry the test fills and reads.

#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "tests/unit/program_fixture.h"

namespace velmora {

inline constexpr char16_t playSetKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\playSet";
inline constexpr char16_t parametersKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\playParameters";
inline constexpr char16_t identityKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\Vesion";
inline constexpr char16_t hostsKey[] = u"SOFTWARE\\Norvane\\zkPlayer\\hosts";

class SettingsFixture : public ProgramFixture {
protected:
    setControl &settings = app.setControl();
    fakes::FakeRegistry &registry = fake.registry;

    // The entries of the registry's log that begin with `beginning`.
    Texts logged(std::u16string_view beginning) const {
        Texts found;
        for (const std::u16string &line : registry.log())
            if (startsWith(line, beginning))
                found.push_back(line);
        return found;
    }

    // A whole font set, as the program writes it.
    void storeFontSet(const std::u16string &set) {
        for (const char16_t *stem :
             {u"_Lrc_Bold", u"_Lrc_Charset", u"_Lrc_Italic", u"_Lrc_Size", u"_Lrc_Strikethrough",
              u"_Lrc_Underline", u"_Lrc_Weight", u"_Lrc_ForeColor", u"_Lrc_BackColor"})
            registry.setNumber(playSetKey, set + stem, 0);
        registry.setText(playSetKey, set + u"_Lrc_Name", u"Noto Sans");
        registry.setNumber(playSetKey, set + u"_Lrc_Size", 24);
        registry.setNumber(playSetKey, set + u"_Lrc_Weight", 400);
        registry.setText(playSetKey, u"Desktop_Lrc_AutoOpen", u"1");
    }
};

} // namespace velmora
