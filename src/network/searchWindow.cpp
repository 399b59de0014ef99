#include "network/searchWindow.h"

#include "base/numbers.h"
#include "platform/forms/listbox.h"
#include "playback/player.h"
#include "playlist/Search.h"
#include "playlist/another_PlayInfo_Form.h"
#include "playlist/playerInfo.h"
#include "playlist/saveOrOpenFile.h"
#include "velmora.h"

namespace velmora {

SearchWords wordsOfTrack(Velmora &app) {
    const std::u16string track = app.player().nowPlay_File;
    const std::u16string stem = app.player().getFileStem(track);
    if (!app.playerInfo().readId3v1(track))
        return {stem, u""};
    SearchWords words{app.another_PlayInfo_Form().playInfo_TitleText.text(),
                      app.another_PlayInfo_Form().playInfo_ArtistText.text()};
    if (words.name.empty())
        words.name = stem;
    return words;
}

std::int32_t rowUnder(const forms::ListBox &list, Twips y) {
    const std::int32_t height = roundToInt32(list.rowHeight());
    if (height <= 0 || y < 0)
        return -1;
    const std::int32_t row = list.topIndex() + roundToInt32(y) / height;
    return row < list.listCount() ? row : -1;
}

bool canWriteBeside(Velmora &app, std::u16string_view path) {
    std::u16string folder = app.Search().getFolderPart(path);
    if (!folder.empty())
        folder.pop_back(); // its separator
    return app.saveOrOpenFile().canWriteFolder(folder);
}

} // namespace velmora
