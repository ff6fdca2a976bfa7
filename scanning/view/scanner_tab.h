#pragma once

#include "core/user_settings.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_test_driver.h"

#include <QWidget>

class QAction;
class QMenu;

// A minimal scanner tab: the results table and the scan actions, so the main window has
// something to host until the full tab replaces it.
namespace scanning::view {

class ScannerTab : public QWidget {
    Q_OBJECT
public:
    ScannerTab(scanning::ScanTestDriver& driver, scanning::ResultsTableModel& results, core::UserSettings& settings,
               QWidget* parent = nullptr);

    QAction* startPauseAction() const { return startPause_; }
    QAction* stopAction() const { return stop_; }
    QAction* applyFilterAction() const { return applyFilter_; }
    QAction* copyAction() const { return copy_; }
    QMenu* exportMenu() const { return exportMenu_; }

signals:
    void statusMessage(const QString& text);

private:
    QAction* startPause_;
    QAction* stop_;
    QAction* applyFilter_;
    QAction* copy_;
    QMenu* exportMenu_;
};

} // namespace scanning::view
