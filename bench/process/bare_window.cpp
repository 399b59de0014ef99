// The floor of what a player's windows can cost with this toolkit: two windows of the sizes of the
// player's splash and main window, each painted once from an image and with a line of text, the
// second as soon as the first is up; then a timer of 70 ms, as the player's clock, that does
// nothing. With --plays it does what is seen of a player at work, and nothing else: the name rolls
// by a letter each 280 ms, the time is painted each second, and each 630 ms the end of the bar,
// which takes five minutes from end to end.
//
//   bare_window [--plays] [LINE]

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
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

class Player {
public:
    explicit Player(QWidget &window) : window_(window) {}

    void tick() {
        ++ticks_;
        if (ticks_ % ticksALetter == 0)
            roll();
        if (ticks_ % ticksASecond == 0)
            window_.update(11, 123, 172, 18);
        if (ticks_ % ticksAPixel == 0)
            window_.update(12 + ticks_ / ticksAPixel % 448, 106, 8, 8);
    }

private:
    static constexpr int ticksALetter = 4;
    static constexpr int ticksASecond = 14;
    static constexpr int ticksAPixel = 9;

    // By one write, where the toolkit takes several.
    void roll() {
        name_ = name_.mid(1) + name_.left(1);
        xcb_connection_t *const connection =
            qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        if (netName_ == XCB_ATOM_NONE) {
            netName_ = atom(connection, "_NET_WM_NAME");
            utf8_ = atom(connection, "UTF8_STRING");
        }
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE,
                            static_cast<xcb_window_t>(window_.winId()), netName_, utf8_, 8,
                            static_cast<std::uint32_t>(name_.size()), name_.constData());
        xcb_flush(connection);
    }
    static xcb_atom_t atom(xcb_connection_t *connection, const char *name) {
        xcb_intern_atom_reply_t *const reply = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, qstrlen(name), name), nullptr);
        const xcb_atom_t found = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
        std::free(reply);
        return found;
    }

    QWidget &window_;
    QByteArray name_ = "Velmora 2011 - [1/1] A song with a name of usual length  -  ";
    xcb_atom_t netName_ = XCB_ATOM_NONE;
    xcb_atom_t utf8_ = XCB_ATOM_NONE;
    int ticks_ = 0;
};

} // namespace

int main(int count, char **words) {
    QApplication application(count, words);
    QStringList arguments = application.arguments();
    const bool plays = arguments.removeOne(QStringLiteral("--plays"));
    const QString line = arguments.value(1, QStringLiteral("A window and nothing else"));
    Bare main({480, 216}, line, nullptr);
    Bare splash({420, 200}, line, [&main] { main.show(); });
    QTimer clock;
    clock.setTimerType(Qt::PreciseTimer);
    Player player(main);
    if (plays)
        QObject::connect(&clock, &QTimer::timeout, [&player] { player.tick(); });
    clock.start(70);
    splash.show();
    return QApplication::exec();
}
