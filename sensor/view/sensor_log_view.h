#pragma once

#include <QListView>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>

class QAction;

// The on-screen sensor log: the newest lines as plain text, one row each. Lines arrive far
// faster than a screen can show them (thousands a second), so they are gathered and shown in
// batches a few times a second, and only the rows in sight are ever laid out; the log itself
// and its file keep every line, this view only the newest.
namespace sensor::view {

class SensorLogLines;

class SensorLogView : public QListView {
    Q_OBJECT
public:
    static constexpr int keptLines = 5000;
    static constexpr std::chrono::milliseconds refreshInterval{100};

    explicit SensorLogView(QWidget* parent = nullptr);

    // Whole lines, each ending in "\n", as the log adds them.
    void appendText(const QString& text);
    void clearLog();
    // Shows what is waiting now instead of at the next refresh.
    void flush();

    // The shown lines, oldest first, joined by "\n".
    QString text() const;
    int lineCount() const;
    // Copies the selected lines, or all shown ones when none is selected.
    QAction* copyAction() const { return copy_; }

private:
    SensorLogLines* lines_;
    // The log's additions since the last refresh, each one or more lines ending in "\n".
    QStringList pending_;
    QTimer refresh_;
    QAction* copy_;
};

} // namespace sensor::view
