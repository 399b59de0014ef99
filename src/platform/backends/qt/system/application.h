#pragma once

// The toolkit's application: started lean, on X11, without leaving traces in the environment that
// programs started by us would inherit.

#include "platform/backends/qt/system/qt_windows.h"

#include <QApplication>

#include <memory>
#include <string>
#include <vector>

namespace velmora::platform::qt {

class Application {
public:
    // Null without a display, after a note.
    static std::unique_ptr<Application> make(const QtOptions &options);
    ~Application();
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

private:
    explicit Application(const std::string &name);

    // The toolkit keeps references to these.
    std::vector<std::string> words_;
    std::vector<char *> arguments_;
    int count_;
    std::unique_ptr<QApplication> application_;
};

} // namespace velmora::platform::qt
