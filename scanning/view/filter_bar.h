#pragma once

#include <QWidget>

class QAction;
class QComboBox;
class QCompleter;
class QLineEdit;
class QStringListModel;

namespace scanning {
class ScanTestDriver;
}

namespace scanning::view {

// The filter bar over the results table: its fields go into the driver's filter criteria on
// Apply, and the names and channels the scans have seen complete the name and channel fields.
class FilterBar : public QWidget {
    Q_OBJECT
public:
    explicit FilterBar(scanning::ScanTestDriver& driver, QWidget* parent = nullptr);

    QAction* applyFilterAction() const { return apply_; }
    QAction* clearFilterAction() const { return clear_; }
    QCompleter* nameCompleter() const { return nameCompleter_; }
    QCompleter* channelCompleter() const { return channelCompleter_; }

signals:
    // Why the inputs were refused; empty once they are accepted.
    void inputError(const QString& text);

private:
    void applyFilter();
    void clearFilter();
    void showButtonState();
    void refreshCompletions();

    scanning::ScanTestDriver& driver_;
    QLineEdit* name_;
    QLineEdit* channel_;
    QComboBox* band_;
    QComboBox* firstAndOr_;
    QComboBox* secondAndOr_;
    QComboBox* thirdAndOr_;
    QLineEdit* signal_;
    QComboBox* strongerOrWeaker_;
    QAction* apply_;
    QAction* clear_;
    QStringListModel* names_;
    QStringListModel* channels_;
    QCompleter* nameCompleter_;
    QCompleter* channelCompleter_;
};

} // namespace scanning::view
