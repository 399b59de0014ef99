// The floor of what a player's windows can cost with this toolkit: two windows of the sizes of the
// player's splash and main window, each painted once from an image and with a line of text, the
// second as soon as the first is up; then a timer of 70 ms, as the player's clock, that does
// nothing.
//
//   bare_window [LINE]

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <utility>

namespace {

class Bare : public QWidget {
public:
    Bare(QSize size, QString line, std::function<void()> painted)
        : line_(std::move(line)), painted_(std::move(painted)) {
        setFixedSize(size);
        setWindowFlags(Qt::FramelessWindowHint);
        setWindowTitle(QStringLiteral("bare"));
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QImage picture(size(), QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        QPainter painter(this);
        painter.drawImage(0, 0, picture);
        painter.drawText(20, 40, line_);
        if (auto next = std::exchange(painted_, nullptr))
            QTimer::singleShot(0, this, next);
    }

private:
    QString line_;
    std::function<void()> painted_;
};

} // namespace

int main(int count, char **words) {
    QApplication application(count, words);
    const QString line =
        application.arguments().value(1, QStringLiteral("A window and nothing else"));
    Bare main({480, 216}, line, nullptr);
    Bare splash({420, 200}, line, [&main] { main.show(); });
    QTimer clock;
    clock.setTimerType(Qt::PreciseTimer);
    clock.start(70);
    splash.show();
    return QApplication::exec();
}
