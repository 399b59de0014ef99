#pragma once

// Draws controls that are not toolkit widgets, and the grounds of forms.

#include "platform/backends/qt/paint/text_painter.h"
#include "platform/forms/controls.h"
#include "platform/forms/form.h"
#include "platform/forms/user_control.h"

#include <QPainter>

#include <functional>

namespace velmora::platform::qt {

class ControlPainter {
public:
    explicit ControlPainter(TextPainter &texts) noexcept : texts_(texts) {}

    // Everything in one go for one paint. The painter's coordinates are the form's, in logical
    // pixels; nothing outside `dirty` needs to be drawn.
    struct Job {
        QPainter &painter;
        QRectF dirty;
        double density = 1;
        bool keyed = false; // the key colour is a hole in this form
        // Controls that somebody else draws (a widget of their own) are skipped.
        std::function<bool(const forms::Control &)> elsewhere;
        const forms::Control *focused = nullptr; // gets a ring if it is painted
    };

    // What lies below all controls, except a ground picture.
    static void paintFlatGround(const Job &job, const forms::Form &form, const QRectF &area);
    void paintChildren(const Job &job, const forms::Container &container);
    // One control with what it contains, whether or not it is drawn elsewhere.
    void paint(const Job &job, const forms::Control &control);

    // Whether the control itself can make holes in a form with a key.
    static bool makesHoles(const forms::Control &control);

private:
    void paintLabel(const Job &job, const forms::Label &label, const QRectF &place);
    void paintBox(const Job &job, const forms::PictureBox &box, const QRectF &place);
    void paintFrame(const Job &job, const forms::Frame &frame, const QRectF &place);
    void paintCustom(const Job &job, const forms::UserControl &control, const QRectF &place);
    static void paintRing(const Job &job, const QRectF &place);
    static void paintLine(const Job &job, const forms::Line &line);
    static void paintShape(const Job &job, const forms::Shape &shape, const QRectF &place);
    static void fill(const Job &job, const QRectF &area, Colour colour);

    TextPainter &texts_;
};

} // namespace velmora::platform::qt
