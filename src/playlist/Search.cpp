#include "playlist/Search.h"

#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "playlist/playList_Form.h"
#include "velmora.h"

namespace velmora {

namespace {

// In the order of testing.
constexpr std::u16string_view supportedFormats[] = {
    u"MP3", u"WMA", u"WAV", u"MID", u"MIDI", u"OGG",  u"RMVB", u"RM",   u"MPG", u"AVI",
    u"WMV", u"FLV", u"MP4", u"DAT", u"CD",   u"FLAC", u"TTA",  u"AIFF", u"AU",  u"APE"};

} // namespace

Search::Search(Velmora &app) : app_(app) {}

std::u16string Search::getFolderPart(std::u16string_view path) const {
    const std::size_t last = path.rfind(app_.platform().files.separatorOf(path));
    return last == std::u16string_view::npos ? std::u16string()
                                             : std::u16string(path.substr(0, last + 1));
}

std::u16string Search::getExtension(std::u16string_view path) const {
    const std::size_t point = path.rfind(u'.');
    if (point == std::u16string_view::npos)
        return {};
    const std::u16string tail = upper(path.substr(point));
    const auto bytes = static_cast<std::ptrdiff_t>(app_.platform().ansi.byteCount(tail));
    return std::u16string(rightPart(tail, bytes - 1));
}

bool Search::isSupportedFormat(std::u16string_view path) const {
    const std::u16string extension = getExtension(path);
    for (const std::u16string_view format : supportedFormats)
        if (extension == format)
            return true;
    return false;
}

bool Search::isInPlayList(std::u16string_view path) const {
    return app_.playList_Form().List1.contains(path);
}

} // namespace velmora
