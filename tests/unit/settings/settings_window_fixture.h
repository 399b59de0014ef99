#pragma once

// The settings window of a started program, driven through its controls.

#include "playlist/playInfo_Form.h"
#include "tests/unit/pointer.h"
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

    // As the pointer does it, which first opens the page that the control lies on.
    void click(forms::Control &control) {
        const std::pair<forms::Frame *, zkButton *> pages[] = {
            {&form.playFrame, &form.playSet},         {&form.lrc_Frame, &form.lrcSet},
            {&form.folder_Frame, &form.folderSet},    {&form.Language_Frame, &form.languageSet},
            {&form.Shortcuts_Frame, &form.Shortcuts}, {&form.help_Frame, &form.help}};
        for (const auto &[frame, tab] : pages)
            if (liesIn(control, *frame) && !frame->visible())
                clickOn(*tab);
        clickOn(control);
    }
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

    static bool liesIn(const forms::Control &control, const forms::Control &frame) {
        const forms::Control *outer = control.container().asControl();
        return outer != nullptr && (outer == &frame || liesIn(*outer, frame));
    }

    forms::Label &desktopLine() { return app.lrcForm().lrc_Text; }
    std::u16string stored(std::u16string_view name) {
        const auto value = registry.value(playSetKey, name);
        return value ? value->text : u"(none)";
    }
};

} // namespace velmora
