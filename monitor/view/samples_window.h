#pragma once

#include "monitor/beep_schedule.h"
#include "monitor/samples_table_model.h"

#include <QWidget>

#include <functional>

class QLabel;
class QTableView;

// The samples of the examined access point in a window of their own, newest first, with audio
// tracking that follows the newest sample's signal.
namespace monitor::view {

class AudioTrackingButton;

class WiFiShowSamplesWindow : public QWidget {
    Q_OBJECT
public:
    // beep plays the sound once; parent is the window this one stays above.
    WiFiShowSamplesWindow(scanning::TimerSource& timers, std::function<void()> beep, QWidget* parent = nullptr);
    ~WiFiShowSamplesWindow() override;

    // Opens the window for an access point's samples (newest first) and its SSID.
    void showSamples(const QList<scan::ScanedResultInfo>& samples, const QString& ssid);
    // A new sample list of the same access point; a running beep restarts at the newest signal.
    void updateSamples(const QList<scan::ScanedResultInfo>& samples);
    void setSSID(const QString& ssid);
    void scanDidStoppedByUser();

    const BeepSchedule& beepSchedule() const { return schedule_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::optional<int> newestRssi() const;

    BeepSchedule schedule_;
    SamplesTableModel model_;
    QLabel* headerField_;
    QTableView* samplesTable_;
    AudioTrackingButton* audioTrackingButton_;
};

} // namespace monitor::view
