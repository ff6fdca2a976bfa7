#pragma once

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QToolButton;

namespace scanning {
class ScanTestDriver;
}

namespace scanning::view {

// The list of scan tests, newest first: renaming in place, choosing the test to show, and
// deleting one after the driver's confirmation.
class TestListView : public QWidget {
    Q_OBJECT
public:
    explicit TestListView(scanning::ScanTestDriver& driver, QWidget* parent = nullptr);

    // The row the user chose, or -1.
    int selectedRow() const;
    QListWidget* list() const { return list_; }

private:
    void reload();
    void selectionChanged();
    void itemEdited(QListWidgetItem* item);
    void deleteSelected();

    scanning::ScanTestDriver& driver_;
    QListWidget* list_;
    QToolButton* delete_;
    bool reloading_ = false;
};

} // namespace scanning::view
