#pragma once

// The program. One object owns every module and every form; modules and forms reach each other
// through it. There are no globals: a test makes as many programs as it likes.
//
// Modules live as long as the program. A form comes into being on its first touch (its accessor):
// its controls are made from the design, then its `load` runs. Forms stay alive, hidden, for the
// whole run; `unloadForm` is for the two exceptions, the video window and the splash.

#include "platform/contracts/platform.h"

#include <memory>

namespace velmora {

// Modules.
class copyFile;
class formSet;
class Language;
class Language_Set;
class lrc_Internet_Search;
class myCommondialog;
class player;
class playerInfo;
class Procedure_Description;
class remoteControl;
class saveOrOpenFile;
class Search;
class setControl;
class skinSet;
class song_Internet_Search;
class system_SpecialFolder;
class update;

// Forms.
class aboutForm;
class another_PlayInfo_Form;
class check_SoundDriver_Form;
class doLrcForm;
class listControl_Form;
class lrcForm;
class Main;
class MenuForm;
class miniForm;
class playInfo_Form;
class playList_Form;
class playSetForm;
class search_Lrc_Internet_Form;
class search_Song_Internet_Form;
class startLoad_Form;
class VideoScreen_Form;
class welcomeForm;

class Velmora {
public:
    explicit Velmora(const platform::Platform &platform);
    ~Velmora();
    Velmora(const Velmora &) = delete;
    Velmora &operator=(const Velmora &) = delete;

    // Runs the start sequence (the splash window's). Returns when the player is up, or does not
    // return when the sequence ends the program.
    void start();

    const platform::Platform &platform() const noexcept { return platform_; }

    velmora::copyFile &copyFile() noexcept;
    velmora::formSet &formSet() noexcept;
    velmora::Language &Language() noexcept;
    velmora::Language_Set &Language_Set() noexcept;
    velmora::lrc_Internet_Search &lrc_Internet_Search() noexcept;
    velmora::myCommondialog &myCommondialog() noexcept;
    velmora::player &player() noexcept;
    velmora::playerInfo &playerInfo() noexcept;
    velmora::Procedure_Description &Procedure_Description() noexcept;
    velmora::remoteControl &remoteControl() noexcept;
    velmora::saveOrOpenFile &saveOrOpenFile() noexcept;
    velmora::Search &Search() noexcept;
    velmora::setControl &setControl() noexcept;
    velmora::skinSet &skinSet() noexcept;
    velmora::song_Internet_Search &song_Internet_Search() noexcept;
    velmora::system_SpecialFolder &system_SpecialFolder() noexcept;
    velmora::update &update() noexcept;

    velmora::aboutForm &aboutForm();
    velmora::another_PlayInfo_Form &another_PlayInfo_Form();
    velmora::check_SoundDriver_Form &check_SoundDriver_Form();
    velmora::doLrcForm &doLrcForm();
    velmora::listControl_Form &listControl_Form();
    velmora::lrcForm &lrcForm();
    velmora::Main &Main();
    velmora::MenuForm &MenuForm();
    velmora::miniForm &miniForm();
    velmora::playInfo_Form &playInfo_Form();
    velmora::playList_Form &playList_Form();
    velmora::playSetForm &playSetForm();
    velmora::search_Lrc_Internet_Form &search_Lrc_Internet_Form();
    velmora::search_Song_Internet_Form &search_Song_Internet_Form();
    velmora::startLoad_Form &startLoad_Form();
    velmora::VideoScreen_Form &VideoScreen_Form();
    velmora::welcomeForm &welcomeForm();

    // Whether the video window exists now, without touching it.
    bool videoScreenLoaded() const noexcept;
    // Lets the video window go; the next touch makes a fresh one. The old one's model lives on
    // until no handler is active, so a handler of the window itself may call this.
    void unloadVideoScreen();

private:
    struct Modules;
    struct Forms;
    platform::Platform platform_;
    std::unique_ptr<Modules> modules_;
    std::unique_ptr<Forms> forms_;
};

} // namespace velmora
