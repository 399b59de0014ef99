#include "playback/startLoad_Form.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "network/temporary_names.h"
#include "network/update.h"
#include "network/welcomeForm.h"
#include "platform/contracts/files.h"
#include "platform/contracts/system.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playback/MenuForm.h"
#include "playback/check_SoundDriver_Form.h"
#include "playback/player.h"
#include "playback/remoteControl.h"
#include "playlist/playerInfo.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/playSetForm.h"
#include "settings/setControl.h"
#include "settings/skinSet.h"
#include "ui/Procedure_Description.h"
#include "ui/formSet.h"
#include "ui/system_SpecialFolder.h"
#include "velmora.h"

namespace velmora {

namespace {

constexpr std::int32_t slideWaitMs = 1;
constexpr std::int32_t queryFlags = 48; // forward only, return at once
constexpr std::int32_t instancesThatRefuse = 2;

// "major.minor.revision" out of four numbers joined by points.
std::u16string firstThree(const std::u16string &version) {
    std::size_t end = 0;
    for (int points = 0; end < version.size(); ++end)
        if (version[end] == u'.' && ++points == 3)
            break;
    return std::u16string(trim(std::u16string_view(version).substr(0, end)));
}

} // namespace

startLoad_Form::startLoad_Form(Velmora &app)
    : startLoad_Form_Design(app.platform().windows), app_(app) {}

void startLoad_Form::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    on().Unload = [this] { end(0); };
}

// The label is painted at once: the sequence keeps events from being handled.
void startLoad_Form::say(std::u16string_view text) {
    showText.setCaption(text);
    showText.refresh();
}

// The texts stay Chinese in every language: the language is loaded on the way. A stage that fails
// does not keep the player from coming up.
void startLoad_Form::startLoad() {
    title_ICO.setPicture(app_.Main().title_ICO.picture());
    show();
    say(u"请稍后，程序加载中...");
    passOver([this] { readVersion(); });
    say(u"皮肤、语言初始化中...");
    initialise();
    say(u"检测程序启动数...");
    checkInstances();
    app_.remoteControl().start();
    passOver([this] { clearLeftovers(); });
    passOver([this] { prepareTray(); });
    say(u"检测系统声卡...");
    passOver([this] { checkSound(); });
    passOver([this] { checkUpdate(); });
    say(u"初始化播放器...");
    preparePlayer();
    passOver([this] { checkSafeMode(); });
    loadPlayMode();
    say(u"获取资讯列表...");
    passOver([this] { showWelcome(); });
    say(u"加载曲目列表...");
    app_.Main().main_Load();
    say(u"完毕！启动播放器...");
    passOver([this] { app_.skinSet().skin_VideoScreen_Form(); });
    hide();
    app_.Main().show();
}

// The version comes out of the program file's own record.
void startLoad_Form::readVersion() {
    const platform::FileSystem &files = app_.platform().files;
    platform::Processes &processes = app_.platform().processes;
    std::u16string path = processes.applicationFolder();
    if (path.empty() || path.back() != files.separator())
        path += files.separator();
    path += processes.applicationStem();
    velmora::Procedure_Description &record = app_.Procedure_Description();
    record.read_File_Version(path + u".exe");
    if (record.ver_FileVersion.empty())
        record.read_File_Version(path);
    app_.Main().Vesion = firstThree(record.ver_FileVersion);
}

void startLoad_Form::initialise() {
    passOver([this] { app_.skinSet().skin_All(); });
    app_.formSet().wait_Ms = slideWaitMs;
    passOver([this] { app_.setControl().init_PlaySet(); });
    passOver([this] { app_.setControl().load_Language(); });
}

// --- one instance --------------------------------------------------------------------------------

std::u16string startLoad_Form::restart_Marker_Path() const {
    return app_.system_SpecialFolder().get_Special_Folder(folderTemporary) + u"RestartZkPlayer.tmp";
}

std::int16_t startLoad_Form::restart_Marker(bool write) {
    const bool done = passOver([&] {
        const auto object = app_.platform().files.CreateFileSystemObject();
        if (write)
            object->CreateTextFile(restart_Marker_Path(), app_.Main().title.caption());
        else
            object->DeleteFile(restart_Marker_Path());
    });
    return done ? -1 : 0;
}

void startLoad_Form::checkInstances() {
    if (app_.saveOrOpenFile().fileExists(restart_Marker_Path())) {
        // The instance before asked for this start and may still be ending. Only the refusal is
        // skipped: from now on this is the instance that others are refused for.
        restart_Marker(false);
        passOver([&] { app_.platform().processes.previousInstance(); });
        return;
    }
    if (alreadyRunning()) {
        app_.platform().remote.raiseOther();
        app_.platform().windows.MsgBox(
            app_.Language().msg_Already_Running, platform::MsgBoxButtons::Ok,
            platform::MsgBoxIcon::Exclamation, app_.Main().title.caption());
        unload();
    }
}

bool startLoad_Form::alreadyRunning() {
    bool running = false;
    passOver([&] {
        running =
            countInstances() >= instancesThatRefuse || app_.platform().processes.previousInstance();
    });
    return running;
}

// Counts processes by the internal name of their program file, so a renamed copy counts as well.
// The query's text is the service's own matter and is sent as it always was.
std::int32_t startLoad_Form::countInstances() {
    std::int32_t count = 0;
    for (const std::u16string &path :
         app_.platform().processes.ExecQuery(u"Select * Form Win32_Process", queryFlags)) {
        if (path.empty() || !app_.saveOrOpenFile().fileExists(path))
            continue;
        app_.Procedure_Description().read_File_Version(path);
        if (upper(app_.Procedure_Description().ver_InternalName) == upper(u"zkPlayer"))
            ++count;
        if (count == instancesThatRefuse)
            break;
    }
    return count;
}

// --- the rest of the sequence --------------------------------------------------------------------

// What a run that was ended by force left behind, beside what the platform clears by itself.
void startLoad_Form::clearLeftovers() {
    velmora::saveOrOpenFile &files = app_.saveOrOpenFile();
    const velmora::setControl &settings = app_.setControl();
    const std::u16string temporary =
        app_.system_SpecialFolder().get_Special_Folder(folderTemporary);
    for (const std::u16string &folder : {settings.Path_Lrc, settings.Path_Cache, temporary})
        files.clearProbes(folder);
    for (const std::u16string_view name : {updateFileName, welcomeFileName})
        files.shellDel(temporary + std::u16string(name));
}

void startLoad_Form::prepareTray() {
    app_.formSet().tray_Add(app_.Main());
    app_.formSet().tray_Tip(app_.Main().title.caption());
}

void startLoad_Form::checkSound() {
    if (app_.check_SoundDriver_Form().get_CheckResult() != 0)
        return;
    app_.platform().windows.MsgBox(app_.Language().msg_No_Sound_Card, platform::MsgBoxButtons::Ok,
                                   platform::MsgBoxIcon::Critical, app_.Main().title.caption());
    app_.Main().check_SoundDriver.setVisible(false);
    app_.MenuForm().check_SoundDriver.setEnabled(false);
}

void startLoad_Form::checkUpdate() {
    if (app_.setControl().get_AutoUpdate() != 0) {
        say(u"检测更新软件版本...");
        app_.update().check_Update(false);
    }
}

void startLoad_Form::preparePlayer() {
    velmora::Main &main = app_.Main();
    main.setEnabled(false);
    passOver([this] { app_.playerInfo().buildGenreTable(); });
    velmora::playSetForm &settings = app_.playSetForm();
    settings.desktop_Lrc_Preview.setText(main.title.caption());
    settings.other_Lrc_Preview.setText(main.title.caption());
    passOver([this] { loadLyricFonts(); });
    settings.desktopLrc_AutoOpen.setValue(app_.lrcForm().desktopLrcAutoOpen ? 1 : 0);
    passOver([this] { app_.formSet().read_Tray_Area(); });
}

// Both sets pass through the same staging variables, so each is applied before the next is read.
void startLoad_Form::loadLyricFonts() {
    if (app_.setControl().load_Lrc_Font(u"Desktop"))
        app_.skinSet().apply_Desktop_Lrc_Font(true);
    if (app_.setControl().load_Lrc_Font(u"Other"))
        app_.skinSet().apply_Other_Lrc_Font(true);
}

void startLoad_Form::checkSafeMode() {
    const std::int32_t boot = app_.platform().processes.cleanBoot();
    if (boot == 1 || boot == 2) {
        app_.platform().windows.MsgBox(app_.Language().msg_Safe_Mode, platform::MsgBoxButtons::Ok,
                                       platform::MsgBoxIcon::Exclamation,
                                       app_.Main().title.caption());
    }
}

void startLoad_Form::loadPlayMode() {
    velmora::setControl &settings = app_.setControl();
    velmora::playSetForm &form = app_.playSetForm();
    switch (settings.get_PlayMode()) {
    case 0:
        form.Play_Order.setValue(true);
        break;
    case 1:
        form.Play_Random.setValue(true);
        break;
    case 2:
        form.Play_RepeatPlay.setValue(true);
        break;
    default:
        break;
    }
    passOver([&] { settings.PlayMode = toInt16(settings.get_PlayMode()); });
    passOver([&] { settings.isAutoPlay = toInt16(settings.get_IsAutoPlay()); });
    passOver([&] { settings.VideoInterface = toInt16(settings.get_VideoInterface()); });
}

void startLoad_Form::showWelcome() {
    const bool shows = app_.setControl().get_AutoShowWelcome();
    app_.Main().welcome.setVisible(!shows);
    if (shows)
        app_.welcomeForm().Start(false);
}

void startLoad_Form::end(int status) {
    passOver([this] { app_.player().close_Sub(-1); });
    passOver([this] { app_.formSet().tray_Remove(); });
    app_.platform().processes.end(status);
}

} // namespace velmora
