#pragma once

#include "text/dialog_filters.h"

#include <QFileDialog>

#include <string>
#include <vector>

namespace velmora::platform::qt {

// The file dialog for a name to save under. A name that none of the filter's patterns takes gets
// the default extension when it is accepted, ahead of the question whether to overwrite: that asks
// for the file which will be written. (The toolkit's own rule gives none to a name with a point in
// it.)
class SaveDialog : public QFileDialog {
public:
    // `filter`: descriptions and patterns in turns, each ended by NUL. An empty extension is none.
    SaveDialog(std::u16string_view filter, std::u16string defaultExtension);

    void accept() override;

private:
    void completeName();

    std::vector<DialogFilter> filters_;
    std::u16string extension_;
};

} // namespace velmora::platform::qt
