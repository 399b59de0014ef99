#pragma once

// A list for assistive technology: its rows with their names, selection and actions.

#include "platform/backends/qt/scene/list_view.h"

#include <QAccessibleWidget>

#include <vector>

namespace velmora::platform::qt {

class ListAccess : public QAccessibleWidget {
public:
    explicit ListAccess(ListView &view);
    ~ListAccess() override;

    int childCount() const override;
    QAccessibleInterface *child(int row) const override;
    int indexOfChild(const QAccessibleInterface *wanted) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QAccessible::State state() const override;

    // The current row, or what is selected, is another.
    void tellSelection();
    // Rows came, went or are called otherwise. A thousand of these in one round are told as one.
    void tellRows();

private:
    ListView &view() const { return *static_cast<ListView *>(object()); }
    forms::ListBox &list() const { return view().list(); }
    void refreshRows();
    void tellCount();

    mutable std::vector<QAccessible::Id> rows_;
    int toldCount_; // of the rows
    bool rowsPosted_ = false;
};

} // namespace velmora::platform::qt
