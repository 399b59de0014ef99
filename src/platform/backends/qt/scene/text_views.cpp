#include "platform/backends/qt/scene/text_views.h"

#include "platform/backends/qt/paint/fonts.h"
#include "platform/backends/qt/paint/look.h"
#include "platform/backends/qt/paint/text_painter.h"
#include "platform/backends/qt/screen/loop.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QStyleOptionFrame>
#include <QTextBlock>
#include <QTextLayout>

#include <cmath>

namespace velmora::platform::qt {

namespace {

// What the text keeps from the frame, so that it begins as far in as the rows of a list.
constexpr int lineMargin = 4;
constexpr int blockMargin = 2;
constexpr double halfPixel = 0.5;

// Of a box whose letters the program draws itself, the toolkit's have no colour.
bool drawsItself(const forms::TextBox &box) { return box.locked() && !box.multiLine(); }

QPalette paletteFor(const forms::TextBox &box, QPalette palette) {
    const bool unseen = drawsItself(box);
    const QColor text = toQColor(box.foreColor());
    palette.setColor(QPalette::Text, unseen ? QColor(Qt::transparent) : text);
    palette.setColor(QPalette::Base, toQColor(box.backColor()));
    palette.setColor(QPalette::Disabled, QPalette::Text,
                     unseen ? QColor(Qt::transparent) : QColor::fromRgba(look::dimmed));
    palette.setColor(QPalette::Disabled, QPalette::Base, toQColor(box.backColor()));
    palette.setColor(QPalette::HighlightedText,
                     unseen ? QColor(Qt::transparent) : QColor::fromRgba(look::accentInk));
    return palette;
}

QString withoutBreaks(QString text) {
    return text.remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
}

template <typename Edit> class TextChild : public ChildView {
public:
    TextChild(forms::TextBox &box, const ViewTools &tools, Edit *edit)
        : ChildView(edit), box_(box), tools_(tools), edit_(edit) {}

    void changed(forms::Change what) override {
        if (what == forms::Change::Text)
            showText();
        else if (what == forms::Change::Look)
            showLook();
    }

protected:
    void begin() {
        showLook();
        showText();
    }
    virtual QString shown() const = 0;
    virtual QString modelOf(const QString &shownText) const = 0;
    virtual QString present() const = 0;
    virtual void replace(const QString &text) = 0;

    void edited() {
        const Loop::Handler handler(tools_.loop);
        box_.userEdited(fromQString(modelOf(present())));
    }

    forms::TextBox &box_;
    ViewTools tools_;
    Edit *edit_;

private:
    void showText() {
        if (edit_->isReadOnly() != box_.locked()) {
            edit_->setReadOnly(box_.locked());
            showLook();
        }
        const QString text = shown();
        if (present() == text)
            return;
        const QSignalBlocker quiet(edit_);
        replace(text);
    }

    void showLook() {
        edit_->setFont(tools_.fonts.toolkitFont(box_.font()));
        edit_->setPalette(paletteFor(box_, edit_->palette()));
        // The colour of letters that the program draws itself is in no palette.
        edit_->update();
    }
};

// A text of several lines on the ground that its frame draws.
class BlockEdit : public QPlainTextEdit {
public:
    explicit BlockEdit(QWidget *parent) : QPlainTextEdit(parent) {
        viewport()->setAutoFillBackground(false);
        setViewportMargins(blockMargin, 0, blockMargin, 0);
    }

protected:
    // The last line shows whole or not at all.
    void paintEvent(QPaintEvent *event) override {
        QRegion area = event->region();
        const double foot = viewport()->height();
        double top = contentOffset().y();
        for (QTextBlock block = firstVisibleBlock(); block.isValid() && top < foot;
             block = block.next()) {
            const QTextLayout &lines = *block.layout();
            for (int line = 0; line < lines.lineCount(); ++line) {
                const QRectF place = lines.lineAt(line).rect().translated(0, top);
                if (place.top() > 0 && place.bottom() > foot + halfPixel)
                    area &= QRect(0, 0, viewport()->width(), static_cast<int>(place.top()));
            }
            top += blockBoundingRect(block).height();
        }
        if (area.isEmpty())
            return;
        QPaintEvent whole(area);
        QPlainTextEdit::paintEvent(&whole);
    }
};

// A line of text. One that cannot be typed into shows what labels will look like, so its letters
// are measured and drawn as theirs are. One that can lays out its own, for the cursor and for what
// an input method composes: in the same face.
class LineEdit : public QLineEdit {
public:
    LineEdit(const forms::TextBox &box, const ViewTools &tools, QWidget *parent)
        : QLineEdit(parent), box_(box), tools_(tools) {}

protected:
    // The toolkit scrolls, and draws the box and what is selected.
    void paintEvent(QPaintEvent *event) override {
        QLineEdit::paintEvent(event);
        if (!drawsItself(box_))
            return;
        const QString text = displayText();
        QPainter painter(this);
        painter.setClipRect(inner());
        paintLetters(painter, text,
                     isEnabled() ? toQColor(box_.foreColor()) : QColor::fromRgba(look::dimmed));
        if (!hasSelectedText())
            return;
        const double from = textLeft(text) + placeOf(text, selectionStart());
        const double to = textLeft(text) + placeOf(text, selectionEnd());
        painter.setClipRect(QRectF(from, 0, to - from, height()), Qt::IntersectClip);
        paintLetters(painter, text, QColor::fromRgba(look::accentInk));
    }

private:
    static constexpr double mostPixels = 1e6; // the box clips

    void paintLetters(QPainter &painter, const QString &text, const QColor &colour) const {
        TextLook look;
        look.font = &box_.font();
        look.colour = colour;
        look.middle = true;
        const QRectF area(inner());
        const double left = textLeft(text);
        tools_.texts.draw(painter, {left, area.top(), mostPixels, area.height()}, fromQString(text),
                          look);
    }

    // Where the text begins, however far it is scrolled: the toolkit only tells where its cursor
    // is, by a rectangle that begins a little before the place.
    double textLeft(const QString &text) const {
        constexpr int beforeCursor = 5;
        return cursorRect().left() + beforeCursor - std::round(placeOf(text, cursorPosition()));
    }

    double placeOf(const QString &text, int unit) const {
        return tools_.fonts.placeOf(fromQString(text), box_.font(), static_cast<std::size_t>(unit));
    }

    QRect inner() const {
        QStyleOptionFrame frame;
        initStyleOption(&frame);
        return style()
            ->subElementRect(QStyle::SE_LineEditContents, &frame, this)
            .marginsRemoved(textMargins());
    }

    const forms::TextBox &box_;
    ViewTools tools_;
};

class LineChild : public TextChild<QLineEdit> {
public:
    LineChild(forms::TextBox &box, const ViewTools &tools, QWidget *parent)
        : TextChild(box, tools, new LineEdit(box, tools, parent)) {
        edit_->setFrame(true);
        edit_->setTextMargins(lineMargin, 0, lineMargin, 0);
        QObject::connect(edit_, &QLineEdit::textEdited, edit_, [this] {
            keepOneLine();
            edited();
        });
        begin();
    }

private:
    // What is pasted may hold line breaks, which the user would not see and a name cannot have.
    void keepOneLine() {
        const QString text = edit_->text();
        const QString line = withoutBreaks(text);
        if (line == text)
            return;
        const auto cursor = withoutBreaks(text.left(edit_->cursorPosition())).size();
        const QSignalBlocker quiet(edit_);
        edit_->setText(line);
        edit_->setCursorPosition(static_cast<int>(cursor));
    }

    QString shown() const override { return toQString(box_.text()); }
    QString modelOf(const QString &text) const override { return text; }
    QString present() const override { return edit_->text(); }
    void replace(const QString &text) override {
        edit_->setText(text);
        edit_->setCursorPosition(0);
    }
};

class BlockChild : public TextChild<QPlainTextEdit> {
public:
    BlockChild(forms::TextBox &box, const ViewTools &tools, QWidget *parent)
        : TextChild(box, tools, new BlockEdit(parent)) {
        edit_->setTabChangesFocus(true);
        edit_->setFrameShape(QFrame::StyledPanel);
        edit_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QObject::connect(edit_, &QPlainTextEdit::textChanged, edit_, [this] { edited(); });
        begin();
    }

private:
    QString shown() const override {
        QString text = toQString(box_.text());
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        return text;
    }
    QString modelOf(const QString &text) const override {
        return QString(text).replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    }
    QString present() const override { return edit_->toPlainText(); }
    void replace(const QString &text) override { edit_->setPlainText(text); }
};

} // namespace

std::unique_ptr<ChildView> makeTextView(forms::TextBox &box, const ViewTools &tools,
                                        QWidget *parent) {
    if (box.multiLine())
        return std::make_unique<BlockChild>(box, tools, parent);
    return std::make_unique<LineChild>(box, tools, parent);
}

} // namespace velmora::platform::qt
