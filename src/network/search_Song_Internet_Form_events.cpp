// What the window tells of a transfer. It is told at every kilobyte, so this is built for speed.

#include "base/joined.h"
#include "base/numbers.h"
#include "network/WininetDownClass.h"
#include "network/search_Song_Internet_Form.h"
#include "platform/contracts/platform.h"
#include "velmora.h"

#include <algorithm>

namespace velmora {

namespace {

constexpr std::u16string_view windowName = u"曲目网络搜索";

// By their codes, from 1.
constexpr std::u16string_view statusTexts[] = {u"开始会话...", u"连接服务器...",   u"发送请求...",
                                               u"请求成功...", u"开始接收数据...", u"下载结束..."};
constexpr std::u16string_view unknownStatus = u"未知状态...";
constexpr std::u16string_view errorTexts[] = {
    u"会话失败...",     u"连接服务器失败...",        u"发送请求失败...",   u"下载被中止...",
    u"文件已经存在...", u"创建目录出错...",          u"打开文件时出错...", u"文件大小为0，无效...",
    u"类型不匹配...",   u"文件正在使用，无法删除..."};
constexpr std::u16string_view unknownError = u"未知出错...";

template <std::size_t size> std::u16string_view
textOf(const std::u16string_view (&texts)[size], std::int32_t code, std::u16string_view otherwise) {
    return code >= 1 && code <= static_cast<std::int32_t>(size) ? texts[code - 1] : otherwise;
}

// At most two decimals, none that are zeros at the end.
std::u16string percentText(double percent) {
    const auto hundredths = static_cast<std::int64_t>(roundHalfEven(percent * 100));
    std::u16string text = decimal(hundredths / 100);
    if (hundredths % 100 != 0)
        text.append({u'.', static_cast<char16_t>(u'0' + hundredths / 10 % 10)});
    if (hundredths % 10 != 0)
        text += static_cast<char16_t>(u'0' + hundredths % 10);
    return text;
}

} // namespace

void search_Song_Internet_Form::say(std::u16string_view text) {
    constexpr std::u16string_view between = u" - ";
    // A transfer says the same at every kilobyte.
    const std::u16string_view shown = title.caption();
    if (shown.size() == windowName.size() + between.size() + text.size() &&
        shown.starts_with(windowName) && shown.ends_with(text) &&
        shown.substr(windowName.size(), between.size()) == between)
        return;
    title.setCaption(joined({windowName, between, text}));
}

void search_Song_Internet_Form::sayReady() { title.setCaption(windowName); }

void search_Song_Internet_Form::wd_Status(std::int32_t code) {
    say(textOf(statusTexts, code, unknownStatus));
}

void search_Song_Internet_Form::wd_Error(std::int32_t code) {
    say(textOf(errorTexts, code, unknownError));
}

void search_Song_Internet_Form::wd_Progress(double total, double received, double speed) {
    const double percent = std::clamp(received / (total / 100), 0.0, 100.0);
    zkProgress1.setValue(percent);
    platform::Profiles &profiles = app_.platform().profiles;
    join(transferText_, {u"下载进度：", formatByteSize(profiles, received), u" of ",
                         formatByteSize(profiles, total), u" (", percentText(percent), u"%)"});
    downInfo_3.setCaption(transferText_);
    join(transferText_, {u"下载速度：", formatByteSize(profiles, speed), u" /s"});
    downInfo_4.setCaption(transferText_);
}

void search_Song_Internet_Form::wd_DownloadEnd(bool /*success*/) {
    for (forms::Label *label : {&downInfo_0, &downInfo_1, &downInfo_2, &downInfo_3, &downInfo_4})
        label->setCaption(u"");
}

} // namespace velmora
