#pragma once

// The settings window of a started program, driven through its controls.

#include "playlist/playInfo_Form.h"
#include "tests/unit/settings/settings_fixture.h"
#include "ui/formSet.h"

namespace velmora {

class SettingsWindow : public SettingsFixture {
protected:
    void SetUp() override {
        start();
        registry.clearLog();
    }

    playSetForm &form = app.playSetForm();
    setControl &memory = settings;

    // As the button and the key do it.
    void open() { app.Main().playSet_Button_Click(); }

    static void click(forms::Control &control) { control.on().Click(); }
    void apply() { click(form.yy); }
    void okay() { click(form.qd); }
    void cancel() { click(form.qx); }

    void expectClosed() {
        EXPECT_FALSE(form.visible());
        EXPECT_TRUE(app.Main().enabled());
        EXPECT_TRUE(app.playList_Form().enabled());
    }
    void expectOpen() {
        EXPECT_TRUE(form.visible());
        EXPECT_FALSE(app.Main().enabled());
        EXPECT_FALSE(app.playList_Form().enabled());
    }

    forms::Label &desktopLine() { return app.lrcForm().lrc_Text; }
    std::u16string stored(std::u16string_view name) {
        const auto value = registry.value(playSetKey, name);
        return value ? value->text : u"(none)";
    }
};

} // namespace velmora
