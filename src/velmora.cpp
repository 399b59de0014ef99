#include "velmora.h"

#include "lyrics/doLrcForm.h"
#include "lyrics/lrcForm.h"
#include "network/lrc_Internet_Search.h"
#include "network/search_Lrc_Internet_Form.h"
#include "network/search_Song_Internet_Form.h"
#include "network/song_Internet_Search.h"
#include "network/update.h"
#include "network/welcomeForm.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/VideoScreen_Form.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/miniForm.h"
#include "playback/player.h"
#include "playback/remoteControl.h"
#include "playback/startLoad_Form.h"
#include "playlist/Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/copyFile.h"
#include "playlist/listControl_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/playList_Form.h"
#include "playlist/playerInfo.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/Language_Set.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "ui/Procedure_Description.h"
#include "ui/aboutForm.h"
#include "ui/formSet.h"
#include "ui/myCommondialog.h"
#include "ui/system_SpecialFolder.h"

namespace velmora {

namespace {

// A form that comes into being on its first touch. The slot is filled before `load` runs, so a
// touch from inside finds the form that is being loaded.
template <typename Form> class FormSlot {
public:
    Form &touch(Velmora &app) {
        if (!form_) {
            form_ = std::make_unique<Form>(app);
            form_->load();
        }
        return *form_;
    }
    Form *loaded() const noexcept { return form_.get(); }
    std::unique_ptr<Form> take() noexcept { return std::move(form_); }

private:
    std::unique_ptr<Form> form_;
};

} // namespace

struct Velmora::Modules {
    explicit Modules(Velmora &app)
        : copyFile_(app), formSet_(app), Language_(app), Language_Set_(app),
          lrc_Internet_Search_(app), myCommondialog_(app), player_(app), playerInfo_(app),
          Procedure_Description_(app), remoteControl_(app), saveOrOpenFile_(app), Search_(app),
          setControl_(app), skinSet_(app), song_Internet_Search_(app), system_SpecialFolder_(app),
          update_(app) {}

    velmora::copyFile copyFile_;
    velmora::formSet formSet_;
    velmora::Language Language_;
    velmora::Language_Set Language_Set_;
    velmora::lrc_Internet_Search lrc_Internet_Search_;
    velmora::myCommondialog myCommondialog_;
    velmora::player player_;
    velmora::playerInfo playerInfo_;
    velmora::Procedure_Description Procedure_Description_;
    velmora::remoteControl remoteControl_;
    velmora::saveOrOpenFile saveOrOpenFile_;
    velmora::Search Search_;
    velmora::setControl setControl_;
    velmora::skinSet skinSet_;
    velmora::song_Internet_Search song_Internet_Search_;
    velmora::system_SpecialFolder system_SpecialFolder_;
    velmora::update update_;
};

struct Velmora::Forms {
    FormSlot<velmora::aboutForm> aboutForm_;
    FormSlot<velmora::another_PlayInfo_Form> another_PlayInfo_Form_;
    FormSlot<velmora::check_SoundDriver_Form> check_SoundDriver_Form_;
    FormSlot<velmora::doLrcForm> doLrcForm_;
    FormSlot<velmora::listControl_Form> listControl_Form_;
    FormSlot<velmora::lrcForm> lrcForm_;
    FormSlot<velmora::Main> Main_;
    FormSlot<velmora::MenuForm> MenuForm_;
    FormSlot<velmora::miniForm> miniForm_;
    FormSlot<velmora::playInfo_Form> playInfo_Form_;
    FormSlot<velmora::playList_Form> playList_Form_;
    FormSlot<velmora::playSetForm> playSetForm_;
    FormSlot<velmora::search_Lrc_Internet_Form> search_Lrc_Internet_Form_;
    FormSlot<velmora::search_Song_Internet_Form> search_Song_Internet_Form_;
    FormSlot<velmora::startLoad_Form> startLoad_Form_;
    FormSlot<velmora::VideoScreen_Form> VideoScreen_Form_;
    FormSlot<velmora::welcomeForm> welcomeForm_;
};

Velmora::Velmora(const platform::Platform &platform)
    : platform_(platform), modules_(std::make_unique<Modules>(*this)),
      forms_(std::make_unique<Forms>()) {}

Velmora::~Velmora() = default;

void Velmora::start() { startLoad_Form().startLoad(); }

velmora::copyFile &Velmora::copyFile() noexcept { return modules_->copyFile_; }
velmora::formSet &Velmora::formSet() noexcept { return modules_->formSet_; }
velmora::Language &Velmora::Language() noexcept { return modules_->Language_; }
velmora::Language_Set &Velmora::Language_Set() noexcept { return modules_->Language_Set_; }
velmora::lrc_Internet_Search &Velmora::lrc_Internet_Search() noexcept {
    return modules_->lrc_Internet_Search_;
}
velmora::myCommondialog &Velmora::myCommondialog() noexcept { return modules_->myCommondialog_; }
velmora::player &Velmora::player() noexcept { return modules_->player_; }
velmora::playerInfo &Velmora::playerInfo() noexcept { return modules_->playerInfo_; }
velmora::Procedure_Description &Velmora::Procedure_Description() noexcept {
    return modules_->Procedure_Description_;
}
velmora::remoteControl &Velmora::remoteControl() noexcept { return modules_->remoteControl_; }
velmora::saveOrOpenFile &Velmora::saveOrOpenFile() noexcept { return modules_->saveOrOpenFile_; }
velmora::Search &Velmora::Search() noexcept { return modules_->Search_; }
velmora::setControl &Velmora::setControl() noexcept { return modules_->setControl_; }
velmora::skinSet &Velmora::skinSet() noexcept { return modules_->skinSet_; }
velmora::song_Internet_Search &Velmora::song_Internet_Search() noexcept {
    return modules_->song_Internet_Search_;
}
velmora::system_SpecialFolder &Velmora::system_SpecialFolder() noexcept {
    return modules_->system_SpecialFolder_;
}
velmora::update &Velmora::update() noexcept { return modules_->update_; }

velmora::aboutForm &Velmora::aboutForm() { return forms_->aboutForm_.touch(*this); }
velmora::another_PlayInfo_Form &Velmora::another_PlayInfo_Form() {
    return forms_->another_PlayInfo_Form_.touch(*this);
}
velmora::check_SoundDriver_Form &Velmora::check_SoundDriver_Form() {
    return forms_->check_SoundDriver_Form_.touch(*this);
}
velmora::doLrcForm &Velmora::doLrcForm() { return forms_->doLrcForm_.touch(*this); }
velmora::listControl_Form &Velmora::listControl_Form() {
    return forms_->listControl_Form_.touch(*this);
}
velmora::lrcForm &Velmora::lrcForm() { return forms_->lrcForm_.touch(*this); }
velmora::Main &Velmora::Main() { return forms_->Main_.touch(*this); }
velmora::MenuForm &Velmora::MenuForm() { return forms_->MenuForm_.touch(*this); }
velmora::miniForm &Velmora::miniForm() { return forms_->miniForm_.touch(*this); }
velmora::playInfo_Form &Velmora::playInfo_Form() { return forms_->playInfo_Form_.touch(*this); }
velmora::playList_Form &Velmora::playList_Form() { return forms_->playList_Form_.touch(*this); }
velmora::playSetForm &Velmora::playSetForm() { return forms_->playSetForm_.touch(*this); }
velmora::search_Lrc_Internet_Form &Velmora::search_Lrc_Internet_Form() {
    return forms_->search_Lrc_Internet_Form_.touch(*this);
}
velmora::search_Song_Internet_Form &Velmora::search_Song_Internet_Form() {
    return forms_->search_Song_Internet_Form_.touch(*this);
}
velmora::startLoad_Form &Velmora::startLoad_Form() { return forms_->startLoad_Form_.touch(*this); }
velmora::VideoScreen_Form &Velmora::VideoScreen_Form() {
    return forms_->VideoScreen_Form_.touch(*this);
}
velmora::welcomeForm &Velmora::welcomeForm() { return forms_->welcomeForm_.touch(*this); }

bool Velmora::videoScreenLoaded() const noexcept {
    return forms_->VideoScreen_Form_.loaded() != nullptr;
}

void Velmora::unloadVideoScreen() {
    velmora::VideoScreen_Form *form = forms_->VideoScreen_Form_.loaded();
    if (form == nullptr)
        return;
    form->Timer1.setRunning(false);
    form->hide();
    // A touch from here on makes a fresh window. The old one may have a handler of its own active.
    std::shared_ptr<velmora::VideoScreen_Form> old = forms_->VideoScreen_Form_.take();
    platform_.windows.whenIdle([old] {});
}

} // namespace velmora
