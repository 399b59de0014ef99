#pragma once

// The toolkit's window of a form: a layer that also tells of closing, moving and minimising.

#include "platform/backends/qt/scene/layer.h"

namespace velmora::platform::qt {

class QtFormWindow;

class TopWidget : public Layer {
public:
    TopWidget(QtFormWindow &window, Scene &scene, Layer::Input input, Qt::WindowFlags flags);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QtFormWindow &window_;
};

} // namespace velmora::platform::qt
