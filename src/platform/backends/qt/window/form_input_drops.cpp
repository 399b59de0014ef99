// Tool tips and files dropped on a window.

#include "platform/backends/qt/screen/file_uris.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/text_convert.h"
#include "platform/backends/qt/window/form_input.h"
#include "platform/backends/qt/window/form_window.h"
#include "platform/forms/dispatch.h"
#include "text/path_text.h"

#include <QDropEvent>
#include <QHelpEvent>
#include <QMimeData>
#include <QToolTip>

namespace velmora::platform::qt {

namespace {

constexpr auto uriList = "text/uri-list";

// A tip is never markup, whatever a file is called.
QString plainTip(const std::u16string &text) {
    const QString shown = toShown(text);
    return Qt::mightBeRichText(shown) ? QStringLiteral("<span>%1</span>").arg(shown.toHtmlEscaped())
                                      : shown;
}

} // namespace

bool FormInput::tip(QWidget &widget, const QHelpEvent &event) {
    const PointTwips at = place(event.globalPos());
    const forms::Control *control = form_.controlAt(at);
    tipped_ = control;
    if (control == nullptr || control->toolTip().empty()) {
        QToolTip::hideText();
        return true;
    }
    QRect area = toPixels(control->placeInForm()).toAlignedRect();
    area.translate(-widget.mapTo(widget.window(), QPoint(0, 0)));
    QToolTip::showText(event.globalPos(), plainTip(control->toolTip()), &widget, area);
    return true;
}

void FormInput::tipChanged(const forms::Control &control) {
    if (tipped_ != &control || !QToolTip::isVisible())
        return;
    if (control.toolTip().empty())
        QToolTip::hideText();
    else
        QToolTip::showText(QCursor::pos(), plainTip(control.toolTip()));
}

bool FormInput::wantsDrops(const forms::Container &container) {
    for (const forms::Control *control : container.controls()) {
        if (control->events() != nullptr && control->events()->OLEDragDrop)
            return true;
        const auto *inner = dynamic_cast<const forms::Container *>(control);
        if (inner != nullptr && wantsDrops(*inner))
            return true;
    }
    return false;
}

forms::Control *FormInput::dropTarget(PointTwips at) const {
    forms::Control *control = form_.controlAt(at);
    while (control != nullptr && (control->events() == nullptr || !control->events()->OLEDragDrop))
        control = control->container().asControl();
    return control != nullptr && control->isLive() ? control : nullptr;
}

bool FormInput::drop(QDropEvent &event) {
    const QPointF global = window_.top()->mapToGlobal(event.position());
    const PointTwips at = place(global);
    const bool takes =
        event.mimeData()->hasFormat(QLatin1String(uriList)) && dropTarget(at) != nullptr;
    // Drag events are drop events by class; entering is accepted for the whole window, since the
    // target may lie elsewhere in it.
    if (event.type() == QEvent::DragEnter) {
        event.setDropAction(Qt::CopyAction);
        event.setAccepted(event.mimeData()->hasFormat(QLatin1String(uriList)));
        return true;
    }
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(takes);
    if (event.type() != QEvent::Drop || !takes)
        return true;
    const QByteArray list = event.mimeData()->data(QLatin1String(uriList));
    forms::FilesDropped dropped;
    for (const std::string &path :
         localPaths({list.constData(), static_cast<std::size_t>(list.size())}))
        dropped.files.push_back(pathFromBytes(path));
    // The one who drags waits for the answer: the handler runs when the protocol is through.
    QMetaObject::invokeMethod(
        window_.top(),
        [this, at, dropped]() mutable {
            forms::Control *target = dropTarget(at);
            if (target == nullptr)
                return;
            const RectTwips area = target->placeInForm();
            dropped.x = at.x - area.left;
            dropped.y = at.y - area.top;
            const Loop::Handler handler(hub_.loop);
            forms::raiseEvent(target->events()->OLEDragDrop, dropped);
        },
        Qt::QueuedConnection);
    return true;
}

} // namespace velmora::platform::qt
