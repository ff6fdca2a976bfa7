#pragma once

#include <QWidget>

class QAction;
class QComboBox;
class QLabel;
class QProgressBar;
class QToolButton;

namespace scanning {
class ScanTestDriver;
}

namespace scanning::view {

// The run controls of the scanner tab: interval selector, start/pause/resume and stop, the busy
// spinner and the count and message labels, all following the scan driver.
class ScanControls : public QWidget {
    Q_OBJECT
public:
    // The intervals offered, in seconds.
    static const QList<int>& intervalChoices();

    explicit ScanControls(scanning::ScanTestDriver& driver, QWidget* parent = nullptr);

    QAction* startPauseAction() const { return startPause_; }
    QAction* stopAction() const { return stop_; }
    QLabel* messageLabel() const { return message_; }
    // The message label also carries the filter bar's input errors.
    void showMessage(const QString& text);

private:
    void showRunButton(int tag, const QString& title);

    scanning::ScanTestDriver& driver_;
    QAction* startPause_;
    QAction* stop_;
    QComboBox* interval_;
    QProgressBar* spinner_;
    QLabel* count_;
    QLabel* message_;
};

} // namespace scanning::view
