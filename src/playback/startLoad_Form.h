#pragma once

// The splash window: runs the start sequence, and lives hidden until the program ends. Unloading it
// is the one way to end the program: the medium is closed, the tray icon removed, the process
// ended.

#include "playback/startLoad_Form.design.h"

#include <string>

namespace velmora {

class Velmora;

class startLoad_Form : public startLoad_Form_Design {
public:
    explicit startLoad_Form(Velmora &app);
    void load();

    // Shows the splash and runs the start sequence. Does not return when the sequence ends the
    // program.
    void startLoad();

    // The one exit: closes the medium, takes the tray icon away, ends the process. Nothing is
    // saved, as everything was saved when it changed. Does not return.
    void end(int status);

    // A marker file tells the next instance that this one asked for a restart. `write` makes it,
    // otherwise it is deleted. -1 when no error was raised.
    std::int16_t restart_Marker(bool write);
    std::u16string restart_Marker_Path() const;

private:
    void say(std::u16string_view text);
    void readVersion();
    void initialise();
    void checkInstances();
    bool alreadyRunning();
    std::int32_t countInstances();
    void clearLeftovers();
    void prepareTray();
    void checkSound();
    void checkUpdate();
    void preparePlayer();
    void loadLyricFonts();
    void checkSafeMode();
    void loadPlayMode();
    void showWelcome();

    Velmora &app_;
};

} // namespace velmora
