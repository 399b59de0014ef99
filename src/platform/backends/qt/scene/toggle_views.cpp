#include "platform/backends/qt/scene/toggle_views.h"

#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/geometry.h"
#include "platform/backends/qt/screen/loop.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QCheckBox>
#include <QPainter>
#include <QPainterPath>
#include <QRadioButton>
#include <QSignalBlocker>

namespace velmora::platform::qt {

namespace {

constexpr double indicatorSize = 14;
constexpr double indicatorRadius = 3;
constexpr double captionLeft = 20;
constexpr double disabledOpacity = 0.45;

enum class Mark { None, Set, Grey };

void paintIndicator(QPainter &painter, const QRectF &box, bool round, Mark mark, bool focused,
                    double density) {
    const double thick = hairline(density);
    const QRectF outline = box.adjusted(thick / 2, thick / 2, -thick / 2, -thick / 2);
    const double radius = round ? box.width() / 2 : indicatorRadius;
    QLinearGradient glass(box.topLeft(), box.bottomLeft());
    const bool filled = mark == Mark::Set && !round;
    glass.setColorAt(0, QColor::fromRgba(filled ? look::accent : look::insetTop));
    glass.setColorAt(1, QColor::fromRgba(filled ? look::accentDeep : look::insetFoot));
    painter.setBrush(glass);
    painter.setPen(QPen(QColor::fromRgba(focused ? look::accent : look::keyOutline), thick));
    painter.drawRoundedRect(outline, radius, radius);
    painter.setPen(Qt::NoPen);
    if (mark == Mark::Grey) {
        painter.setBrush(QColor::fromRgba(look::secondVoice));
        painter.drawRoundedRect(box.adjusted(4, 4, -4, -4), 1, 1);
    } else if (mark == Mark::Set && round) {
        painter.setBrush(QColor::fromRgba(look::accent));
        painter.drawEllipse(box.adjusted(4, 4, -4, -4));
    } else if (mark == Mark::Set) {
        QPainterPath tick;
        tick.moveTo(box.left() + 3.4, box.top() + 7.2);
        tick.lineTo(box.left() + 6, box.top() + 9.8);
        tick.lineTo(box.left() + 10.6, box.top() + 4.6);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor::fromRgba(look::accentInk), 1.8, Qt::SolidLine, Qt::RoundCap,
                            Qt::RoundJoin));
        painter.drawPath(tick);
    }
}

// The look of both kinds; `Base` gives role, focus and keys.
template <typename Base, typename Model> class Toggle : public Base {
public:
    Toggle(Model &model, const ViewTools &tools, QWidget *parent)
        : Base(parent), model_(model), tools_(tools) {
        Base::setAutoExclusive(false);
        QObject::connect(this, &QAbstractButton::clicked, this, [this] {
            const Loop::Handler handler(tools_.loop);
            road();
        });
    }

    void show(bool checked) {
        const QSignalBlocker quiet(this);
        Base::setText(toShown(model_.caption()).replace(QLatin1Char('&'), QLatin1String("&&")));
        Base::setChecked(checked);
        Base::update();
    }

protected:
    // The model decides what a click makes of the value.
    void nextCheckState() override {}
    bool hitButton(const QPoint &at) const override { return Base::rect().contains(at); }

    void paintEvent(QPaintEvent * /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!Base::isEnabled())
            painter.setOpacity(disabledOpacity);
        const double density = Base::devicePixelRatioF();
        const double top = snapped((Base::height() - indicatorSize) / 2.0, density);
        paintIndicator(painter, QRectF(1, top, indicatorSize, indicatorSize), isRound(), mark(),
                       Base::hasFocus(), density);
        TextLook look;
        look.font = &model_.font();
        look.colour = QColor::fromRgba(look::text);
        look.middle = true;
        painter.setRenderHint(QPainter::Antialiasing, false);
        tools_.texts.draw(painter, QRectF(Base::rect()).adjusted(captionLeft, 0, 0, 0),
                          model_.caption(), look);
    }

    virtual void road() = 0;
    virtual bool isRound() const = 0;
    virtual Mark mark() const = 0;

    Model &model_;
    ViewTools tools_;
};

class CheckWidget : public Toggle<QCheckBox, forms::CheckBox> {
public:
    using Toggle::Toggle;

private:
    void road() override { model_.userToggled(); }
    bool isRound() const override { return false; }
    Mark mark() const override {
        return model_.value() == 0 ? Mark::None : model_.value() == 1 ? Mark::Set : Mark::Grey;
    }
};

class OptionWidget : public Toggle<QRadioButton, forms::OptionButton> {
public:
    using Toggle::Toggle;

private:
    void road() override { model_.userChose(); }
    bool isRound() const override { return true; }
    Mark mark() const override { return model_.value() ? Mark::Set : Mark::None; }
};

template <typename Widget, typename Model> class ToggleChild : public ChildView {
public:
    ToggleChild(Model &model, const ViewTools &tools, QWidget *parent)
        : ToggleChild(model, new Widget(model, tools, parent)) {}

    void changed(forms::Change what) override {
        if (what == forms::Change::Look && widget() != nullptr)
            view_->show(model_.value() != 0);
    }

private:
    ToggleChild(Model &model, Widget *view) : ChildView(view), model_(model), view_(view) {
        view_->show(model_.value() != 0);
    }
    Model &model_;
    Widget *view_;
};

} // namespace

std::unique_ptr<ChildView> makeCheckView(forms::CheckBox &box, const ViewTools &tools,
                                         QWidget *parent) {
    return std::make_unique<ToggleChild<CheckWidget, forms::CheckBox>>(box, tools, parent);
}

std::unique_ptr<ChildView> makeOptionView(forms::OptionButton &option, const ViewTools &tools,
                                          QWidget *parent) {
    return std::make_unique<ToggleChild<OptionWidget, forms::OptionButton>>(option, tools, parent);
}

} // namespace velmora::platform::qt
