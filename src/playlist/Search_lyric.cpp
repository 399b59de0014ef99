// Finding the lyric of the track that starts.

#include "playlist/Search.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "network/lrc_Internet_Search.h"
#include "network/webPage.h"
#include "platform/contracts/files.h"
#include "playback/player.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

// What is looked for on the Internet, and for which medium.
struct Search::Wanted {
    std::u16string stem;
    std::u16string save; // where it goes
    player::Medium medium;
};

void Search::findTrackLyric(std::u16string_view path) {
    const std::u16string stem = app_.player().getFileStem(path);
    const std::u16string lyricFolder =
        app_.setControl().Path_Lrc + app_.platform().files.separator();
    const std::u16string save = lyricFolder + stem + u".LRC";
    const std::u16string trackFolder = getFolderPart(path);
    if (trackFolder.empty() || loadNamesake(save, stem))
        return;
    if (loadNamesake(trackFolder + stem + u".LRC", stem)) {
        app_.saveOrOpenFile().writeLrcFile(lyricFolder + stem + u".Lrc", LyricSource::Memory);
        return;
    }
    const Wanted wanted{stem, save, app_.player().medium()};
    // The Internet is of use only where its answer can be kept.
    if (app_.saveOrOpenFile().canWriteFolder(app_.setControl().Path_Lrc) && findOnInternet(wanted))
        return;
    if (app_.player().isGone(wanted.medium))
        return;
    app_.lrcForm().startLoad(u"");
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(false);
}

// The comparison guards against a search that takes parts of a name as patterns.
bool Search::loadNamesake(std::u16string_view path, std::u16string_view stem) {
    const std::u16string foundName = upper(app_.platform().files.Dir(path));
    if (foundName != upper(std::u16string(stem) + u".lrc"))
        return false;
    matched(path);
    return true;
}

void Search::matched(std::u16string_view path) {
    app_.lrcForm().startLoad(path);
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(true);
}

bool Search::findOnInternet(const Wanted &wanted) {
    const std::u16string title = app_.another_PlayInfo_Form().playInfo_TitleText.text();
    const std::u16string artist = app_.another_PlayInfo_Form().playInfo_ArtistText.text();
    if (!title.empty() || !artist.empty()) {
        say(u"正在以属性标志从可选网站搜索...", wanted);
        const bool isBoth = !title.empty() && !artist.empty();
        // The title alone is tried even when it is empty.
        if (tryKeyword(title + (isBoth ? u" " : u"") + artist, wanted) || tryKeyword(title, wanted))
            return true;
    }
    say(u"正在以文件名从可选网站搜索...", wanted);
    return tryKeyword(wanted.stem, wanted);
}

bool Search::tryKeyword(const std::u16string &keyword, const Wanted &wanted) {
    const bool isFetched = fetchLyric(keyword, wanted);
    // The person may have saved one meanwhile, or a seek have begun a search that found it. Loaded
    // once more, it would take from the editor what was typed since.
    if (!isThere(wanted))
        return false;
    if (!app_.player().isGone(wanted.medium) && (isFetched || !isShown(wanted)))
        matched(wanted.save);
    return true;
}

// The first link that the search gives is taken as it is; nothing weighs it.
bool Search::fetchLyric(const std::u16string &keyword, const Wanted &wanted) {
    velmora::lrc_Internet_Search &internet = app_.lrc_Internet_Search();
    if (!internet.searchLrc(keyword))
        return false;
    // The next search, which may begin in the events ahead of the fetch, puts its own there.
    const LinkArray links = internet.lrcDownloadLinks;
    std::int32_t last = 0;
    // An array that nothing was ever stored in has no bound: nothing was found.
    if (!passOver([&] { last = links.upperBound(); }) || last == 1)
        return false;
    say(u"正在下载歌词...", wanted);
    return downloadToLocal(app_.platform(), links.at(0), wanted.save,
                           [&] { return !isThere(wanted); });
}

// An empty file, which a try may have left, is no lyric.
bool Search::isThere(const Wanted &wanted) {
    platform::FileSystem &files = app_.platform().files;
    return !files.Dir(wanted.save).empty() &&
           files.FileLen(pathOnDisk(app_.platform(), wanted.save)) != 0;
}

bool Search::isShown(const Wanted &wanted) {
    const velmora::lrcForm &lyric = app_.lrcForm();
    return lyric.hasLrc && lyric.List1.listCount() > 0 &&
           equalsIgnoringCase(lyric.lrcPath, wanted.save);
}

void Search::say(std::u16string_view text, const Wanted &wanted) {
    if (!app_.player().isGone(wanted.medium))
        app_.lrcForm().nowLrcLine = text;
}

} // namespace velmora
