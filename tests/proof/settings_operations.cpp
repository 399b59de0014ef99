// The start, the settings, and the end.

#include "playback/Main.h"
#include "playback/startLoad_Form.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "tests/proof/world.h"

namespace velmora::proof {

namespace {

void nothing(World &) {}

void start(World &world) { world.start(); }

void change(World &world) {
    world.start();
    world.app.Main().playSet_Button_Click();
    playSetForm &form = world.app.playSetForm();
    form.Language_French.setValue(true);
    form.Play_RepeatPlay.setValue(true);
    form.openVideo_Interface.setValue(1);
    form.save_Lrc_Path.setText(world.path(u"new/lyrics"));
    form.save_PlayCache_Path.setText(world.path(u"new/cache"));
    form.desktopLrc_AutoOpen.setValue(1);
    form.desktop_Lrc_Preview.setForeColor(0x123456);
}

void apply(World &world) { world.app.playSetForm().yy_Click(); }

void restore(World &world) { world.app.setControl().restoreDefaults(); }

void applied(World &world) {
    change(world);
    apply(world);
}

void end(World &world) { world.app.Main().closeButton_Click(); }

// The next start: what it reads, and an end in order.
void look(World &world) {
    world.lastPlayed = world.app.setControl().get_LastPlayFile();
    end(world);
}

} // namespace

std::vector<Operation> settingsOperations() {
    return {
        {"start", nothing, start},
        {"first start", nothing, start},
        {"repair the registry", nothing, start},
        {"apply the settings", change, apply},
        {"restore the defaults", start, restore},
        {"end", applied, end},
        {"look", start, look},
    };
}

} // namespace velmora::proof
