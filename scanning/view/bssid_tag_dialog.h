#pragma once

#include <QDialog>

class QLineEdit;

namespace scanning {
class ResultsTableModel;
}

namespace scanning::view {

// The small window that edits the user's tag of one BSSID; saving stores it through the
// results table, which shows it in the tag column.
class BssidTagDialog : public QDialog {
    Q_OBJECT
public:
    BssidTagDialog(scanning::ResultsTableModel& results, const QString& bssid, const QString& currentTag,
                   QWidget* parent = nullptr);

    QLineEdit* tagField() const { return tag_; }

private:
    void save();

    scanning::ResultsTableModel& results_;
    QString bssid_;
    QLineEdit* tag_;
};

} // namespace scanning::view
