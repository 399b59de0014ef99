// Finding the lyric of the track that starts.

#include "playlist/Search.h"

#include "base/run_time_error.h"
#include "base/text.h"
#include "lyrics/lrcForm.h"
#include "lyrics/lyric_file.h"
#include "network/lrc_Internet_Search.h"
#include "network/webPage.h"
#include "platform/files.h"
#include "playback/player.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playInfo_Form.h"
#include "playlist/saveOrOpenFile.h"
#include "settings/setControl.h"
#include "velmora.h"

namespace velmora {

void Search::findTrackLyric(std::u16string_view path) {
    const std::u16string stem = app_.player().getFileStem(path);
    const std::u16string lyricFolder =
        app_.setControl().Path_Lrc + app_.platform().files.separator();
    const std::u16string save = lyricFolder + stem + u".LRC";
    const std::u16string trackFolder = getFolderPart(path);
    if (trackFolder.empty() || loadNamesake(save, stem)) {
        return;
    }
    if (loadNamesake(trackFolder + stem + u".LRC", stem)) {
        app_.saveOrOpenFile().writeLrcFile(lyricFolder + stem + u".Lrc", LyricSource::Memory);
        return;
    }
    // The Internet is of use only where its answer can be kept.
    if (app_.saveOrOpenFile().canWriteFolder(app_.setControl().Path_Lrc) &&
        findOnInternet(stem, save)) {
        return;
    }
    app_.lrcForm().startLoad(u"");
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(false);
}

// The comparison guards against a search that takes parts of a name as patterns.
bool Search::loadNamesake(std::u16string_view path, std::u16string_view stem) {
    const std::u16string foundName = upper(app_.platform().files.Dir(path));
    if (foundName != upper(std::u16string(stem) + u".lrc")) {
        return false;
    }
    matched(path);
    return true;
}

void Search::matched(std::u16string_view path) {
    app_.lrcForm().startLoad(path);
    app_.playInfo_Form().lrcInfo_Frame.setEnabled(true);
}

bool Search::findOnInternet(std::u16string_view stem, std::u16string_view save) {
    const std::u16string title = app_.another_PlayInfo_Form().playInfo_TitleText.text();
    const std::u16string artist = app_.another_PlayInfo_Form().playInfo_ArtistText.text();
    if (!title.empty() || !artist.empty()) {
        app_.lrcForm().nowLrcLine = u"正在以属性标志从可选网站搜索...";
        const bool isBoth = !title.empty() && !artist.empty();
        // The title alone is tried even when it is empty.
        if (fetchLyric(title + (isBoth ? u" " : u"") + artist, save) || fetchLyric(title, save)) {
            return true;
        }
    }
    app_.lrcForm().nowLrcLine = u"正在以文件名从可选网站搜索...";
    return fetchLyric(stem, save);
}

// The first link that the search gives is taken as it is; nothing weighs it.
bool Search::fetchLyric(std::u16string_view keyword, std::u16string_view save) {
    velmora::lrc_Internet_Search &internet = app_.lrc_Internet_Search();
    if (!internet.searchLrc(keyword)) {
        return false;
    }
    std::int32_t last = 0;
    // An array that nothing was ever stored in has no bound: nothing was found.
    if (!passOver([&] { last = internet.lrcDownloadLinks.upperBound(); }) || last == 1) {
        return false;
    }
    app_.lrcForm().nowLrcLine = u"正在下载歌词...";
    if (!downloadToLocal(app_.platform(), internet.lrcDownloadLinks.at(0), save)) {
        return false;
    }
    platform::FileSystem &files = app_.platform().files;
    if (files.Dir(save).empty() || files.FileLen(pathOnDisk(app_.platform(), save)) == 0) {
        return false;
    }
    matched(save);
    return true;
}

} // namespace velmora
