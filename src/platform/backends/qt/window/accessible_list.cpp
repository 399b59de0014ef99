#include "platform/backends/qt/window/accessible_list.h"

#include "platform/backends/qt/screen/loop.h"
#include "platform/backends/qt/screen/text_convert.h"

#include <QAccessibleActionInterface>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace velmora::platform::qt {

namespace {

// A row of a list; its number is its place.
class RowAccess : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    RowAccess(ListView &view, int row)
        : view_(&view), row_(row), toldName_(toShown(view.list().list(row))) {}

    // One that has gone is told of as gone, and has nothing more to say.
    bool isValid() const override { return view_; }
    bool isThere() const { return view_ && row_ < view_->list().listCount(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return view_ ? view_->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override {
        return view_ ? QAccessible::queryAccessibleInterface(view_) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override {
        return isThere() && kind == QAccessible::Name ? toShown(view_->list().list(row_))
                                                      : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override {
        return isThere() ? view_->rowRect(row_).translated(view_->mapToGlobal(QPoint(0, 0)))
                         : QRect();
    }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isThere())
            return state;
        state.selectable = true;
        state.multiSelectable = view_->list().multiSelect();
        state.selected = view_->list().selected(row_);
        state.focusable = true;
        state.focused = view_->hasFocus() && view_->list().listIndex() == row_;
        state.disabled = !view_->list().isLive();
        state.offscreen = !view_->rect().intersects(view_->rowRect(row_));
        state.invisible = !view_->isVisible() || state.offscreen;
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface && isThere()
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }
    // To press a row is a double click on it, to toggle it a click with Ctrl (in a list of one
    // selection a plain one), and to take the focus a plain click.
    QStringList actionNames() const override {
        return {pressAction(), toggleAction(), setFocusAction()};
    }
    void doAction(const QString &action) override {
        if (!isThere() || !actionNames().contains(action))
            return;
        QMetaObject::invokeMethod(
            view_.data(),
            [view = view_.data(), row = row_, action] {
                if (action == pressAction())
                    view->activate(row);
                else
                    view->choose(row, action == toggleAction());
            },
            Qt::QueuedConnection);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    void tellName() {
        const QString name = text(QAccessible::Name);
        if (name == toldName_)
            return;
        toldName_ = name;
        QAccessibleEvent event(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    }

private:
    QPointer<ListView> view_;
    int row_;
    QString toldName_;
};

} // namespace

ListAccess::ListAccess(ListView &view)
    : QAccessibleWidget(&view, QAccessible::List), toldCount_(view.list().listCount()) {}

ListAccess::~ListAccess() {
    for (const QAccessible::Id id : rows_)
        QAccessible::deleteAccessibleInterface(id);
}

int ListAccess::childCount() const { return list().listCount(); }

QAccessibleInterface *ListAccess::child(int row) const {
    if (row < 0 || row >= list().listCount())
        return nullptr;
    while (static_cast<int>(rows_.size()) <= row)
        rows_.push_back(QAccessible::registerAccessibleInterface(
            new RowAccess(view(), static_cast<int>(rows_.size()))));
    return QAccessible::accessibleInterface(rows_[static_cast<std::size_t>(row)]);
}

int ListAccess::indexOfChild(const QAccessibleInterface *wanted) const {
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (QAccessible::accessibleInterface(rows_[i]) == wanted)
            return static_cast<int>(i);
    return -1;
}

QAccessibleInterface *ListAccess::childAt(int x, int y) const {
    const QPoint at = view().mapFromGlobal(QPoint(x, y));
    return view().rect().contains(at) ? child(view().rowAt(at.y())) : nullptr;
}

QAccessibleInterface *ListAccess::focusChild() const {
    return view().hasFocus() ? child(list().listIndex()) : nullptr;
}

QAccessible::State ListAccess::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.multiSelectable = list().multiSelect();
    return state;
}

void ListAccess::tellSelection() {
    QAccessibleInterface *row = child(list().listIndex());
    if (row == nullptr)
        return;
    QAccessibleEvent selection(row, QAccessible::Selection);
    QAccessible::updateAccessibility(&selection);
    QAccessibleEvent within(&view(), QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&within);
    if (!view().hasFocus())
        return;
    QAccessibleEvent focus(row, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

void ListAccess::tellRows() {
    if (rowsPosted_)
        return;
    rowsPosted_ = true;
    QMetaObject::invokeMethod(
        object(),
        [view = &view()] {
            if (auto *access =
                    dynamic_cast<ListAccess *>(QAccessible::queryAccessibleInterface(view)))
                access->refreshRows();
        },
        Qt::QueuedConnection);
}

void ListAccess::refreshRows() {
    rowsPosted_ = false;
    tellCount();
    while (static_cast<int>(rows_.size()) > list().listCount()) {
        QAccessible::deleteAccessibleInterface(rows_.back());
        rows_.pop_back();
    }
    for (const QAccessible::Id id : rows_)
        if (auto *row = dynamic_cast<RowAccess *>(QAccessible::accessibleInterface(id)))
            row->tellName();
}

// A row is known by its place, so rows come and go at the end, and those ahead are called
// otherwise. However many they are, who counts children is told once: of the outermost.
void ListAccess::tellCount() {
    const int before = std::exchange(toldCount_, list().listCount());
    QAccessibleInterface *outermost = nullptr;
    if (toldCount_ > before)
        outermost = child(toldCount_ - 1);
    else if (static_cast<int>(rows_.size()) > toldCount_)
        outermost = QAccessible::accessibleInterface(rows_.back());
    if (toldCount_ == before || outermost == nullptr)
        return;
    QAccessibleEvent event(outermost, toldCount_ > before ? QAccessible::ObjectCreated
                                                          : QAccessible::ObjectDestroyed);
    QAccessible::updateAccessibility(&event);
}

} // namespace velmora::platform::qt
