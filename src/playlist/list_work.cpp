#include "playlist/list_work.h"

#include "playback/Main.h"
#include "velmora.h"

namespace velmora {

ListWork::ListWork(Velmora &app) : app_(app), isOutermost_(!isGoingOn(app)) {
    if (isOutermost_)
        app_.Main().meActiveControl_Enabled(false);
}

ListWork::~ListWork() {
    if (isOutermost_)
        app_.Main().meActiveControl_Enabled(true);
}

bool ListWork::isGoingOn(Velmora &app) { return !app.Main().playButton.enabled(); }

} // namespace velmora
