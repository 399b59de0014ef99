#include "platform/backends/qt/paint/dark_icons.h"

#include "platform/backends/qt/paint/picture_painter.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace velmora::platform::qt {

namespace {

// An icon's drawing stands in a box with a margin for the pointer. Here the toolkit gives the
// margin, so that only a bit of it is kept.
constexpr double boxSize = 26;
constexpr double keptSize = 20;
constexpr double disabledOpacity = 0.35;

class PictureIcon : public QIconEngine {
public:
    explicit PictureIcon(forms::Picture picture) : picture_(picture) {}

    void paint(QPainter *painter, const QRect &place, QIcon::Mode mode,
               QIcon::State /*state*/) override {
        const double margin = (boxSize / keptSize - 1) / 2;
        const double across = place.width() * margin;
        const double down = place.height() * margin;
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * disabledOpacity);
        paintPicture(*painter, picture_, QRectF(place).adjusted(-across, -down, across, down));
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return drawn;
    }

    QIconEngine *clone() const override { return new PictureIcon(picture_); }

private:
    forms::Picture picture_;
};

forms::Picture drawingOf(QStyle::StandardPixmap which) {
    using forms::Picture;
    switch (which) {
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirOpenIcon:
    case QStyle::SP_DirClosedIcon:
    case QStyle::SP_DirLinkIcon:
    case QStyle::SP_DirLinkOpenIcon:
    case QStyle::SP_DirHomeIcon:
    case QStyle::SP_DesktopIcon:
        return Picture::folder;
    case QStyle::SP_FileIcon:
    case QStyle::SP_FileLinkIcon:
        return Picture::file;
    case QStyle::SP_ComputerIcon:
    case QStyle::SP_DriveHDIcon:
    case QStyle::SP_DriveFDIcon:
    case QStyle::SP_DriveCDIcon:
    case QStyle::SP_DriveDVDIcon:
    case QStyle::SP_DriveNetIcon:
        return Picture::computer;
    case QStyle::SP_ArrowBack:
    case QStyle::SP_ArrowLeft:
    case QStyle::SP_FileDialogBack:
        return Picture::go_back;
    case QStyle::SP_ArrowForward:
    case QStyle::SP_ArrowRight:
        return Picture::go_forward;
    case QStyle::SP_FileDialogToParent:
        return Picture::go_up;
    case QStyle::SP_FileDialogNewFolder:
        return Picture::folder_add;
    case QStyle::SP_FileDialogListView:
        return Picture::view_list;
    case QStyle::SP_FileDialogDetailedView:
        return Picture::list;
    default:
        return Picture::None;
    }
}

} // namespace

QIcon darkIcon(QStyle::StandardPixmap which) {
    const forms::Picture drawing = drawingOf(which);
    return drawing == forms::Picture::None ? QIcon() : QIcon(new PictureIcon(drawing));
}

} // namespace velmora::platform::qt
