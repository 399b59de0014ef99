#include "playback/list_button.h"

#include "playback/Main.h"

namespace velmora {

void markListShown(Main &main, bool shown) {
    main.playList_Shown = shown ? -1 : 0;
    main.playListButton.setPicture(shown ? forms::Picture::list_on : forms::Picture::list);
}

} // namespace velmora
