#pragma once

#include <QPlainTextEdit>
#include <QString>
#include <QTimer>

#include <chrono>

// The on-screen sensor log: the newest lines as plain text. Lines arrive far faster than a
// screen can show them (thousands a second), so they are gathered and shown in batches a few
// times a second; the log itself and its file keep every line, this view only the newest.
namespace sensor::view {

class SensorLogView : public QPlainTextEdit {
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

private:
    QString pending_;
    qsizetype pendingLines_ = 0;
    QTimer refresh_;
};

} // namespace sensor::view
