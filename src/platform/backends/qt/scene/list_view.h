#pragma once

// A list on the screen: paints the rows that can be seen straight from the model, and takes the
// user's clicks, wheel and keys to it. Holds no rows of its own, so a long list costs what a short
// one does.

#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/loop.h"
#include "platform/forms/listbox.h"

#include <QTimer>
#include <QWidget>

namespace velmora::platform::qt {

class ListView : public QWidget {
public:
    ListView(forms::ListBox &list, TextPainter &texts, Loop &loop, QWidget *parent);

    forms::ListBox &list() noexcept { return list_; }

    // The row at a height in the view, also beyond the last one; negative above the first shown.
    int rowAt(double y) const;
    QRect rowRect(int row) const;

    // What clicks on a row would do: a double one, and a single one, alone or beside the others.
    void activate(int row);
    void choose(int row, bool besideOthers);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    double rowHeight() const;
    bool isOpen(int row) const;
    void paintRow(QPainter &painter, int row, const QRectF &place, double density);
    void drag();
    bool isDragOver() const;
    void endDrag();
    int rowFor(int key) const;

    forms::ListBox &list_;
    TextPainter &texts_;
    Loop &loop_;
    QTimer scroll_; // runs while a drag is held beyond an edge
    double dragY_ = 0;
    int wheel_ = 0; // eighths of a degree not yet spent
    std::int16_t dragShift_ = 0;
    bool dragging_ = false;
};

} // namespace velmora::platform::qt
