#include "platform/backends/qt/boxes/message_box.h"

#include "platform/backends/qt/boxes/dark_dialog.h"
#include "platform/backends/qt/paint/look.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <vector>

namespace velmora::platform::qt {

namespace {

constexpr int iconSize = 36;
constexpr int widestText = 460;
constexpr int longestSource = 300;  // characters: the host stands at the front
constexpr int roomForTheRest = 140; // of a box: its title, its buttons and what lies between

// The words of the system's own boxes, in the system's language.
QString buttonText(MsgBoxResult result) {
    struct Words {
        const char16_t *ok, *cancel, *yes, *no;
    };
    static constexpr Words english = {u"OK", u"Cancel", u"Yes", u"No"};
    static constexpr Words chinese = {u"确定", u"取消", u"是", u"否"};
    static constexpr Words traditional = {u"確定", u"取消", u"是", u"否"};
    static constexpr Words french = {u"OK", u"Annuler", u"Oui", u"Non"};
    static constexpr Words japanese = {u"OK", u"キャンセル", u"はい", u"いいえ"};
    const QLocale locale;
    const Words *words = &english;
    if (locale.language() == QLocale::Chinese)
        words = locale.script() == QLocale::TraditionalChineseScript ? &traditional : &chinese;
    else if (locale.language() == QLocale::French)
        words = &french;
    else if (locale.language() == QLocale::Japanese)
        words = &japanese;
    const char16_t *word = result == MsgBoxResult::Ok       ? words->ok
                           : result == MsgBoxResult::Cancel ? words->cancel
                           : result == MsgBoxResult::Yes    ? words->yes
                                                            : words->no;
    return QString::fromUtf16(word);
}

std::vector<MsgBoxResult> resultsOf(MsgBoxButtons buttons) {
    switch (buttons) {
    case MsgBoxButtons::YesNo:
        return {MsgBoxResult::Yes, MsgBoxResult::No};
    case MsgBoxButtons::YesNoCancel:
        return {MsgBoxResult::Yes, MsgBoxResult::No, MsgBoxResult::Cancel};
    case MsgBoxButtons::Ok:
        break;
    }
    return {MsgBoxResult::Ok};
}

QPixmap drawIcon(MsgBoxIcon icon, const QFont &font, double density) {
    QPixmap pixmap(QSize(iconSize, iconSize) * density);
    pixmap.setDevicePixelRatio(density);
    pixmap.fill(Qt::transparent);
    const bool warns = icon == MsgBoxIcon::Critical || icon == MsgBoxIcon::Exclamation;
    const QColor colour = QColor::fromRgba(warns ? look::warning : look::accent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 2));
    painter.setBrush(QColor::fromRgba(look::insetFoot));
    painter.drawEllipse(QRectF(2, 2, iconSize - 4, iconSize - 4));
    if (icon == MsgBoxIcon::Critical) {
        painter.setPen(QPen(colour, 2.6, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(13, 13), QPointF(23, 23));
        painter.drawLine(QPointF(23, 13), QPointF(13, 23));
        return pixmap;
    }
    QFont large = font;
    large.setPixelSize(20);
    large.setBold(true);
    painter.setFont(large);
    painter.setPen(colour);
    const QString sign = icon == MsgBoxIcon::Question      ? QStringLiteral("?")
                         : icon == MsgBoxIcon::Exclamation ? QStringLiteral("!")
                                                           : QStringLiteral("i");
    painter.drawText(QRectF(0, 0, iconSize, iconSize), Qt::AlignCenter, sign);
    return pixmap;
}

// The keys that give an answer.
bool answers(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space ||
           key == Qt::Key_Y || key == Qt::Key_N;
}

class MessageBox : public DarkDialog {
public:
    MessageBox(Hub &hub, const QString &text, MsgBoxButtons buttons, MsgBoxIcon icon,
               const QString &title, const QString &source)
        : DarkDialog(hub, title), byItself_(!hub.x11.personActed()), results_(resultsOf(buttons)),
          result_(buttons == MsgBoxButtons::YesNo         ? MsgBoxResult::No
                  : buttons == MsgBoxButtons::YesNoCancel ? MsgBoxResult::Cancel
                                                          : MsgBoxResult::Ok) {
        auto *row = new QHBoxLayout;
        row->setSpacing(14);
        if (icon != MsgBoxIcon::None) {
            auto *picture = new QLabel;
            picture->setPixmap(drawIcon(icon, font(), devicePixelRatioF()));
            row->addWidget(picture, 0, Qt::AlignTop);
        }
        auto *words = new QLabel(text);
        words->setTextFormat(Qt::PlainText);
        words->setFont(hub.fonts.plainFont(9.5));
        words->setMinimumHeight(iconSize);
        words->setAlignment(Qt::AlignVCenter | Qt::AlignLeft);
        if (words->sizeHint().width() > widestText) {
            words->setWordWrap(true);
            words->setFixedWidth(widestText);
        }
        if (!source.isEmpty()) {
            // What a server says is no markup.
            words->setToolTip(
                QStringLiteral("<span>%1</span>").arg(source.left(longestSource).toHtmlEscaped()));
            words->setAccessibleDescription(source.left(longestSource));
        }
        row->addWidget(fitted(words), 1);
        body()->addLayout(row);
        auto *keys = new QHBoxLayout;
        keys->setSpacing(8);
        keys->addStretch(1);
        for (const MsgBoxResult result : results_) {
            auto *button = new QPushButton(buttonText(result));
            button->setFont(hub.fonts.plainFont(9));
            button->setAutoDefault(true);
            if (result == results_.front()) {
                button->setDefault(true);
                button->setFocus();
            }
            button->installEventFilter(this);
            connect(button, &QPushButton::clicked, this, [this, result] { answer(result); });
            keys->addWidget(button);
        }
        body()->addLayout(keys);
    }

    MsgBoxResult answer() const { return result_; }

protected:
    void showEvent(QShowEvent *event) override {
        shownAt_ = std::chrono::steady_clock::now();
        DarkDialog::showEvent(event);
    }
    // The buttons are asked for a key ahead of the box.
    bool eventFilter(QObject *watched, QEvent *event) override {
        return (event->type() == QEvent::KeyPress &&
                isMeantElsewhere(*static_cast<QKeyEvent *>(event))) ||
               DarkDialog::eventFilter(watched, event);
    }
    void keyPressEvent(QKeyEvent *event) override {
        if (isMeantElsewhere(*event))
            return;
        if (event->key() == Qt::Key_Escape) {
            if (mayBeEscaped())
                reject();
            return;
        }
        if (scrolls(event->key()))
            return;
        if (event->key() == Qt::Key_Y && has(MsgBoxResult::Yes))
            answer(MsgBoxResult::Yes);
        else if (event->key() == Qt::Key_N && has(MsgBoxResult::No))
            answer(MsgBoxResult::No);
        else
            DarkDialog::keyPressEvent(event);
    }

private:
    // Pressed in the middle of something else, and held since then.
    bool isMeantElsewhere(const QKeyEvent &event) const {
        return byItself_ && answers(event.key()) &&
               (event.isAutoRepeat() ||
                std::chrono::steady_clock::now() - shownAt_ < std::chrono::milliseconds(500));
    }

    // A text higher than the screen scrolls inside the box: its buttons stay in view.
    QWidget *fitted(QLabel *words) {
        const int most = room().height() - roomForTheRest;
        const int high =
            words->wordWrap() ? words->heightForWidth(widestText) : words->sizeHint().height();
        if (high <= most)
            return words;
        words->setFixedHeight(high);
        words->setAttribute(Qt::WA_TranslucentBackground);
        scroll_ = new QScrollArea;
        scroll_->setFrameShape(QFrame::NoFrame);
        scroll_->setFocusPolicy(Qt::NoFocus);
        scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroll_->viewport()->setAutoFillBackground(false);
        scroll_->setWidget(words);
        scroll_->setFixedSize(
            words->sizeHint().width() + scroll_->verticalScrollBar()->sizeHint().width(), most);
        return scroll_;
    }

    bool scrolls(int key) {
        if (scroll_ == nullptr)
            return false;
        QScrollBar &bar = *scroll_->verticalScrollBar();
        switch (key) {
        case Qt::Key_PageUp:
            bar.triggerAction(QAbstractSlider::SliderPageStepSub);
            return true;
        case Qt::Key_PageDown:
            bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
            return true;
        default:
            return false;
        }
    }

    bool has(MsgBoxResult result) const {
        return std::find(results_.begin(), results_.end(), result) != results_.end();
    }
    bool mayBeEscaped() const { return has(MsgBoxResult::Cancel) || has(MsgBoxResult::Ok); }
    void answer(MsgBoxResult result) {
        result_ = result;
        accept();
    }

    const bool byItself_;
    std::chrono::steady_clock::time_point shownAt_{};
    std::vector<MsgBoxResult> results_;
    MsgBoxResult result_;
    QScrollArea *scroll_ = nullptr; // where the text does not fit
};

} // namespace

MsgBoxResult showMessageBox(Hub &hub, const QString &text, MsgBoxButtons buttons, MsgBoxIcon icon,
                            const QString &title, const QString &source) {
    MessageBox box(hub, text, buttons, icon, title, source);
    box.run();
    return box.answer();
}

} // namespace velmora::platform::qt
