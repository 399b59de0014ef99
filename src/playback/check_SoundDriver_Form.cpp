#include "playback/check_SoundDriver_Form.h"

#include "base/numbers.h"
#include "base/run_time_error.h"
#include "platform/contracts/media.h"
#include "settings/Language.h"
#include "ui/formSet.h"
#include "velmora.h"

#include <string>
#include <string_view>

namespace velmora {

namespace {

constexpr std::uint32_t firstDevice = 0;
constexpr std::uint32_t recordSize = 50; // of the capability record, as the query takes it
constexpr std::u16string_view lineBreak = u"\r\n";

// Bit by bit from the lowest. These are English in every language.
constexpr std::u16string_view formatTexts[] = {
    u"   11.025Khz,Mono,8bit,11Kb/Ps",  u"   11.025Khz,Stereo,8bit,22Kb/Ps",
    u"   11.025Khz,Mono,16bit,22Kb/Ps", u"   11.025Khz,Stereo,16bit,43Kb/Ps",
    u"   22.05Khz,Mono,8bit,22Kb/Ps",   u"   22.05Khz,Stereo,8bit,43Kb/Ps",
    u"   22.05Khz,Mono,16bit,43Kb/Ps",  u"   22.05Khz,Stereo,16bit,86Kb/Ps",
    u"   44.1Khz,Mono,8bit,43Kb/Ps",    u"   44.1Khz,Stereo,8bit,86Kb/Ps",
    u"   44.1Khz,Mono,16bit,86Kb/Ps",   u"   44.1Khz,Stereo,16bit,172Kb/Ps",
};
constexpr std::u16string_view supportTexts[] = {
    u"   Support Pitch",           u"   Support Playback",
    u"   Support Volume Control",  u"   Support Left-Right Channals",
    u"   Support Synchronization",
};

class Lines {
public:
    void add(std::u16string_view label, std::u16string_view value = {}) {
        text_.append(label).append(value).append(lineBreak);
    }
    // The texts whose bits are set.
    template <std::size_t Count>
    void addBits(std::uint32_t bits, const std::u16string_view (&texts)[Count]) {
        for (std::size_t bit = 0; bit < Count; ++bit)
            if ((bits >> bit & 1) != 0)
                add(texts[bit]);
    }
    const std::u16string &text() const { return text_; }

private:
    std::u16string text_;
};

// The identification numbers are shown as signed ones.
std::u16string signedNumber(std::uint16_t number) {
    return decimal(static_cast<std::int16_t>(number));
}

std::u16string capabilities(const platform::WaveOutCaps &caps, const Language &language) {
    const std::u16string name = caps.productName.substr(0, caps.productName.find(u'\0'));
    const std::u16string version =
        decimal(caps.driverVersion / 256) + u"." + decimal(caps.driverVersion % 256);
    Lines lines;
    lines.add(language.msg_Product_Name, name);
    lines.add(language.msg_Product_Id, signedNumber(caps.productId));
    lines.add(language.msg_Driver_Id, signedNumber(caps.manufacturerId));
    lines.add(language.msg_Driver_Version, version);
    lines.add(language.msg_Output_Channels, decimal(caps.channels));
    lines.add({});
    lines.add(language.msg_Formats_List);
    lines.addBits(caps.formats, formatTexts);
    lines.add({});
    lines.add(language.msg_Extended_List);
    lines.addBits(caps.support, supportTexts);
    return lines.text();
}

} // namespace

check_SoundDriver_Form::check_SoundDriver_Form(Velmora &app)
    : check_SoundDriver_Form_Design(app.platform().windows), app_(app) {}

void check_SoundDriver_Form::load() {
    passOver([this] { app_.formSet().set_ColourKey(*this); });
    app_.formSet().dress(*this, {&title, &title_ICO}, [this] { close_Click(); });
    wire(*this);
}

std::int16_t check_SoundDriver_Form::get_CheckResult() {
    deviceCount_ = app_.platform().waveOut.waveOutGetNumDevs();
    return deviceCount_ >= 1 ? -1 : 0;
}

void check_SoundDriver_Form::check_Click() {
    platform::WaveOut &waveOut = app_.platform().waveOut;
    deviceCount_ = waveOut.waveOutGetNumDevs();
    if (deviceCount_ < 1)
        return;
    platform::WaveOutCaps caps;
    if (waveOut.waveOutGetDevCapsA(firstDevice, caps, recordSize) != 0)
        return;
    checkResult_Text.setText(capabilities(caps, app_.Language()));
}

void check_SoundDriver_Form::close_Click() { hide(); }

} // namespace velmora
