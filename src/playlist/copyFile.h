#pragma once

#include <string_view>

namespace velmora {

class Velmora;

class copyFile {
public:
    explicit copyFile(Velmora &app);

    // Copies a file into a folder with the system's own progress and questions. A copy that the
    // user aborted is reported in a message box. Always false.
    bool copyOneFile(std::u16string_view source, std::u16string_view destination);

private:
    Velmora &app_;
};

} // namespace velmora
