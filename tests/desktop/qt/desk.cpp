#include "tests/desktop/qt/desk.h"

#include "base/text.h"
#include "tests/desktop/x_reply.h"
#include "tests/desktop/x_turn.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace velmora::tests {

namespace {

std::unique_ptr<Desk> theDesk;

// One toolkit application lasts as long as the program: nobody could make a second one.
class DeskEnvironment : public testing::Environment {
public:
    void SetUp() override { theDesk = std::make_unique<Desk>(); }
    void TearDown() override { theDesk.reset(); }
};

[[maybe_unused]] testing::Environment *const environment =
    testing::AddGlobalTestEnvironment(new DeskEnvironment);

} // namespace

Desk &desk() { return *theDesk; }

Desk::Desk() {
    if (!session.running()) {
        ADD_FAILURE() << "no private screen: Xvfb, openbox, xprop and xdotool are needed";
        std::exit(1);
    }
    session.exportToEnvironment();
    screen = std::make_unique<XScreen>(session.display());
    platform::QtOptions options;
    options.note = [this](std::string_view line) { notes.emplace_back(line); };
    windows = platform::QtWindowSystem::make(options);
    if (windows == nullptr) {
        ADD_FAILURE() << "no window system";
        std::exit(1);
    }
    own_ = std::make_unique<QWindow>();
    own_->create();
}

Desk::~Desk() {
    own_.reset();
    windows.reset();
}

bool Desk::pump(const std::function<bool()> &condition, int limitMs) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::milliseconds(limitMs);
    while (!condition()) {
        if (steady_clock::now() >= end)
            return false;
        windows->waitForEvents(steady_clock::now() + std::chrono::milliseconds(5));
    }
    return true;
}

bool Desk::settle() {
    constexpr int limitMs = 30000;
    XTurn turn(session.display());
    if (!turn.managerTook(limitMs)) {
        ADD_FAILURE() << "the window manager is silent";
        return false;
    }
    for (int sign = 0; sign < 2; ++sign) {
        turn.ask(static_cast<xcb_window_t>(own_->winId()));
        if (!pump([&] { return turn.answered(); }, limitMs)) {
            ADD_FAILURE() << "the program is silent";
            return false;
        }
    }
    // What the toolkit has sent by now is done when the answer to a question behind it comes.
    xcb_connection_t *const sent =
        qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    return owned(xcb_get_input_focus_reply(sent, xcb_get_input_focus(sent), nullptr)) != nullptr;
}

void Desk::letPass(int ms) {
    pump([] { return false; }, ms);
}

void Desk::tool(const std::vector<std::string> &words) {
    std::vector<std::string> command = {"xdotool"};
    command.insert(command.end(), words.begin(), words.end());
    session.run(command);
    settle();
}

void Desk::movePointer(int x, int y) { tool({"mousemove", std::to_string(x), std::to_string(y)}); }

void Desk::click(int x, int y, int button) {
    movePointer(x, y);
    tool({"click", std::to_string(button)});
}

void Desk::key(const std::string &name) { tool({"key", name}); }

xcb_window_t nativeOf(const forms::Form &form) {
    const auto *window = static_cast<const platform::qt::QtFormWindow *>(form.window());
    return window != nullptr ? window->nativeWindow() : xcb_window_t{0};
}

TestForm::TestForm(const char *name) : forms::Form(*desk().windows, name) {
    setCaption(u"Test form");
    setBackColor(0x00352A23);
    move({3000, 2250, 4500, 3000}); // 200,150 size 300x200
}

TestForm::~TestForm() {
    hide();
    dropWindow();
}

bool TestForm::isOnScreen() const {
    const auto geometry = desk().screen->geometry(nativeOf(*this));
    return geometry && geometry->mapped;
}

namespace {

// Which windows were painted since it was made.
class Painted : public QObject {
public:
    Painted() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *to, QEvent *event) override {
        if (event->type() == QEvent::Paint && to->isWidgetType())
            windows_.push_back(static_cast<QWidget *>(to)->window());
        return false;
    }
    bool contains(const QWidget *window) const {
        return std::find(windows_.begin(), windows_.end(), window) != windows_.end();
    }

private:
    std::vector<const QWidget *> windows_;
};

} // namespace

void TestForm::appear() {
    const Painted painted;
    show();
    ASSERT_TRUE(desk().pump([this] { return isOnScreen(); })) << "the window did not appear";
    const auto *window = static_cast<platform::qt::QtFormWindow *>(this->window());
    ASSERT_TRUE(desk().pump([&] { return painted.contains(window->top()); }))
        << "it is not painted";
    ASSERT_TRUE(desk().settle());
}

int TestForm::screenX(int x) const {
    return static_cast<int>(std::lround(left() / twipsPerPixel)) + x;
}

int TestForm::screenY(int y) const {
    return static_cast<int>(std::lround(top() / twipsPerPixel)) + y;
}

std::uint32_t TestForm::pixel(int x, int y) const {
    return desk().screen->pixel(screenX(x), screenY(y));
}

void DeskTest::SetUp() { desk().movePointer(1270, 790); }

void DeskTest::TearDown() { desk().settle(); }

std::u16string u16(const std::string &ascii) { return fromUtf8(ascii); }

} // namespace velmora::tests
