#include "network/welcomeForm.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "base/text.h"
#include "network/addresses.h"
#include "network/check_Network.h"
#include "network/temporary_names.h"
#include "network/update.h"
#include "platform/contracts/internet.h"
#include "platform/contracts/windows.h"
#include "playback/Main.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/Language.h"
#include "settings/setControl.h"
#include "ui/formSet.h"
#include "ui/system_SpecialFolder.h"
#include "velmora.h"

namespace velmora {

namespace {

using platform::MsgBoxButtons;
using platform::MsgBoxIcon;

constexpr std::u16string_view pagePath = u"/source/mini/zkPlayerWelcome.php";
constexpr std::u16string_view badData = u"远程数据错误！";

} // namespace

welcomeForm::welcomeForm(Velmora &app) : welcomeForm_Design(app.platform().windows), app_(app) {}

void welcomeForm::load() {
    app_.formSet().set_ColourKey(*this);
    hide();
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    setHandlers();
}

void welcomeForm::setHandlers() {
    wire(*this);
    provider.on().Click = [this] { openTag(provider); };
    Advertising.on().Click = [this] {
        if (!Advertising.tag().empty())
            openTag(Advertising);
    };
    forms::Label *const first[] = {&databases_0_0, &databases_1_0, &databases_2_0};
    for (forms::Label *line : first)
        line->on().Click = [this, line] { openTag(*line); };
    for (std::size_t tab = 0; tab < tabs; ++tab)
        buttons()[tab]->on().Click = [this, tab] { showTab(tab); };
    loadStr.on().Click = [this] {
        if (load_Failed)
            Start(false);
    };
    Timer1.onTimer = [this] { tick(); };
}

std::array<forms::PictureBox *, welcomeForm::tabs> welcomeForm::frames() {
    return {&FrameDate_0, &FrameDate_1, &FrameDate_2};
}

std::array<zkButton *, welcomeForm::tabs> welcomeForm::buttons() {
    return {&tabButton_0, &tabButton_1, &tabButton_2};
}

// What a server served leads to the web and to a letter alone. Any other word comes to nothing:
// files, folders and programs of this machine are no business of its.
void welcomeForm::openTag(const forms::Control &control) {
    if (isAddressForTheDesktop(control.tag()))
        app_.saveOrOpenFile().shellOpen(control.tag());
}

void welcomeForm::showTab(std::size_t tab) {
    for (forms::PictureBox *frame : frames())
        frame->setVisible(false);
    frames()[tab]->setVisible(true);
}

// What is stored is the number of the check box.
void welcomeForm::autoShow_Click() {
    constexpr std::int16_t beyond = 3;
    if (autoShow.value() == beyond)
        autoShow.setValue(2);
    app_.setControl().save_AutoShowWelcome(decimal(autoShow.value()));
}

void welcomeForm::close_Click() {
    hide();
    Timer1.setRunning(false);
    ad_Items.erase();
    app_.Main().welcome.setVisible(true);
    app_.saveOrOpenFile().shellDel(welcome_File);
}

// --- the load ---

void welcomeForm::Start(bool silent) {
    autoShow.setValue(app_.setControl().get_AutoShowWelcome() ? 1 : 0);
    load_Failed = false;
    loadStr.setCaption(u"正在下载资源...");
    welcome_File = app_.system_SpecialFolder().get_Special_Folder(folderTemporary) +
                   std::u16string(welcomeFileName);
    welcome_Url = app_.setControl().get_MakerHost() + std::u16string(pagePath);
    if (!silent)
        app_.platform().internet.tryHostsAnew();
    if (!check_Network(app_.platform().internet)) {
        giveUp(app_.Language().msg_No_Network, !silent);
        return;
    }
    if (!fetch_Welcome()) {
        hide();
        giveUp(u"远程数据传输错误！", !silent);
        return;
    }
    loadStr.setCaption(u"分析数据中...");
    if (value(u"check", u"vesion").empty() || value(u"check", u"update").empty()) {
        hide();
        giveUp(badData, true);
        return;
    }
    if (!checkVersion())
        return;
    if (!read_Config()) {
        hide();
        giveUp(badData, true);
        return;
    }
    loadStr.setCaption(u"加载数据中...");
    showPages(read_Databases());
    show();
    app_.formSet().set_Topmost(hWnd(), true);
}

void welcomeForm::giveUp(std::u16string_view text, bool isTold) {
    if (isTold)
        app_.platform().windows.MsgBox(text, MsgBoxButtons::Ok, MsgBoxIcon::Critical,
                                       app_.Language().msg_Error);
    app_.Main().welcome.setVisible(true);
    close_Click();
}

// Whether the running program can go on with what the file holds.
bool welcomeForm::checkVersion() {
    if (!app_.update().is_NewVersion(value(u"check", u"vesion")))
        return true;
    hide();
    if (leadingNumber(value(u"check", u"update")) == 1) {
        giveUp(u"您当前的程序与资讯要求匹配版本低，在此版本上以无法提供正确数据加载，"
               u"请您更新您的程序后在此启用！",
               true);
        return false;
    }
    app_.platform().windows.MsgBox(
        u"您当前的程序与资讯要求匹配版本低，但是依然可以获取正确数据加载，"
        u"我们建议您更新的程序以便更好的体验！",
        MsgBoxButtons::Ok, MsgBoxIcon::Information, u"友情提示");
    show();
    return true;
}

void welcomeForm::showPages(bool isComplete) {
    for (zkButton *button : buttons())
        button->setEnabled(isComplete);
    for (forms::PictureBox *frame : frames())
        frame->setVisible(false);
    FrameDate_0.setVisible(isComplete);
    loadStr.setVisible(!isComplete);
    if (!isComplete) {
        loadStr.setCaption(u"数据错误，无法加载，请点击重试获取！");
        load_Failed = true;
    }
}

bool welcomeForm::fetch_Welcome() {
    passOver([this] { app_.platform().internet.DeleteUrlCacheEntryA(welcome_Url); });
    if (!app_.saveOrOpenFile().canWriteFolder(
            app_.system_SpecialFolder().get_Special_Folder(folderTemporary)))
        return false;
    app_.saveOrOpenFile().shellDel(welcome_File);
    app_.platform().windows.DoEvents();
    welcome_Result = app_.platform().internet.URLDownloadToFileA(welcome_Url, welcome_File,
                                                                 platform::informationFile);
    return welcome_Result == 0;
}

} // namespace velmora
