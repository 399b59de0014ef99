#include "playlist/playerInfo.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "platform/contracts/ansi.h"
#include "platform/contracts/files.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "velmora.h"

#include <algorithm>
#include <vector>

namespace velmora {

namespace {

constexpr std::size_t tagLength = 128;
constexpr std::size_t genreOffset = 127;

struct Field {
    std::size_t offset;
    std::size_t length;
};
constexpr Field fields[] = {{3, 30}, {33, 30}, {63, 30}, {93, 4}, {97, 30}};

// The names in the order of their numbers, joined by "|". The spellings are those that other
// players and old lists show.
constexpr std::u16string_view genres =
    u"Blues|Classic Rock|Country|Dance|Disco|Funk|Grunge|Hip-Hop|Jazz|Metal|New Age|Oldies|"
    u"Other|Pop|R&B|Rap|Reggae|Rock|Techno|Industrial|Alternative|Ska|Death Metal|Pranks|"
    u"Soundtrack|Euro-Techno|Ambient|Trip Hop|Vocal|Jazz+Funk|Fusion|Trance|Classical|"
    u"Instrumental|Acid|House|Game|Sound Clip|Gospel|Noise|Alt. Rock|Bass|Soul|Punk|Space|"
    u"Meditative|Instrumental Pop|Instrumental Rock|Ethnic|Gothic|Darkwave|Techno-Industrial|"
    u"Electronic|Pop-Folk|Eurodance|Dream|Southern Rock|Comedy|Cult|Gangsta Rap|Top 40|"
    u"Christian Rap|Pop/Punk|Jungle|Native American|Cabaret|New Wave|Phychedelic|Rave|"
    u"Showtunes|Trailer|Lo-Fi|Tribal|Acid Punk|Acid Jazz|Polka|Retro|Musical|Rock & Roll|"
    u"Hard Rock|Folk|Folk/Rock|National Folk|Swing|Fast-Fusion|Bebob|Latin|Revival|Celtic|"
    u"Blue Grass|Avantegarde|Gothic Rock|Progressive Rock|Psychedelic Rock|Symphonic Rock|"
    u"Slow Rock|Big Band|Chorus|Easy Listening|Acoustic|Humour|Speech|Chanson|Opera|"
    u"Chamber Music|Sonata|Symphony|Booty Bass|Primus|Porn Groove|Satire|Slow Jam|Club|Tango|"
    u"Samba|Folklore|Ballad|power Ballad|Rhythmic Soul|Freestyle|Duet|Punk Rock|Drum Solo|"
    u"A Capella|Euro-House|Dance Hall|Goa|Drum & Bass|Club-House|Hardcore|Terror|indie|"
    u"Brit Pop|Negerpunk|Polsk Punk|Beat|Christian Gangsta Rap|Heavy Metal|Black Metal|"
    u"Crossover|Comteporary Christian|Christian Rock|Merengue|Salsa|Trash Metal|Anime|JPop|"
    u"Synth Pop";
constexpr std::int32_t genreCount = 148;
static_assert(std::count(genres.begin(), genres.end(), u'|') == genreCount - 1);

} // namespace

playerInfo::playerInfo(Velmora &app) : app_(app) {}

void playerInfo::buildGenreTable() { genreTable_ = genres; }

std::u16string playerInfo::genreName(std::int32_t code) const {
    if (code > genreCount)
        return {};
    std::int32_t entry = 0;
    if (code < 0)
        entry = ~code;
    else if (code > 0)
        entry = code - 1;
    const auto index = static_cast<std::size_t>(entry);
    const std::vector<std::u16string> names = split(genreTable_, u'|');
    if (index >= names.size())
        raise(ErrorNumber::SubscriptOutOfRange);
    return names[index];
}

bool playerInfo::readId3v1(std::u16string_view path) {
    const std::u16string onDisk = app_.saveOrOpenFile().fileOnDisk(path);
    if (onDisk.empty())
        return true;
    try {
        return readTag(onDisk);
    } catch (const RunTimeError &error) {
        noteSwallowed(error);
        return false;
    }
}

bool playerInfo::readTag(std::u16string_view path) {
    platform::FileSystem &files = app_.platform().files;
    const std::int64_t length = files.FileLen(path);
    if (length < static_cast<std::int64_t>(tagLength))
        return false;
    const std::string tag =
        files.readBytes(path, length - static_cast<std::int64_t>(tagLength), tagLength);
    if (tag.size() < tagLength || tag.compare(0, 3, "TAG") != 0)
        return false;
    showTexts(tag);
    showGenre(static_cast<unsigned char>(tag[genreOffset]));
    return true;
}

// A field ends at its first NUL, and is trimmed where none ends it; what an old tag left behind the
// NUL has no say in how the fields are decoded.
void playerInfo::showTexts(std::string_view tag) {
    std::vector<std::string> bytes;
    std::vector<bool> isEnded;
    for (const Field &field : fields) {
        const std::string_view whole = tag.substr(field.offset, field.length);
        const std::size_t nul = whole.find('\0');
        isEnded.push_back(nul != std::string_view::npos);
        bytes.emplace_back(whole.substr(0, nul));
    }
    const std::vector<std::u16string> texts = app_.platform().ansi.decodeTogether(bytes, true);
    velmora::another_PlayInfo_Form &form = app_.another_PlayInfo_Form();
    forms::TextBox *const boxes[] = {&form.playInfo_TitleText, &form.playInfo_ArtistText,
                                     &form.playInfo_AlbumText, &form.playInfo_YearText,
                                     &form.playInfo_CommentText};
    static_assert(std::size(boxes) == std::size(fields));
    for (std::size_t i = 0; i < std::size(boxes); ++i) {
        // The blanks ahead of a NUL are no longer at the text's end.
        const std::u16string whole = isEnded[i] ? texts[i] + u'\0' : texts[i];
        boxes[i]->setText(untilNul(trim(whole)));
    }
}

void playerInfo::showGenre(unsigned char code) {
    forms::TextBox &box = app_.another_PlayInfo_Form().playInfo_GenreText;
    // A blank is nothing once it is trimmed, and has no code.
    box.setText(code == ' ' ? std::u16string() : genreName(code));
}

} // namespace velmora
