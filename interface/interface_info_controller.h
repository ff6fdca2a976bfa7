#pragma once

#include "interface/interface_fields.h"
#include "interface/interface_samples.h"
#include "platform/api/command_runner.h"
#include "platform/api/wireless_interface.h"
#include "scan/scaned_result_info.h"
#include "scanning/background_work.h"
#include "scanning/timer_source.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

// The interface tab's controller: the one-second refresh of the selected interface's fields and
// samples, the command-line tool's MCS index and the directed scan for the connected network
// (both off this thread), the tool's 30 s re-run while the tab is shown, power and disconnect.
namespace connection {

class InterfaceInfoController : public QObject {
    Q_OBJECT
public:
    using ConnectedNetworkSource = std::function<std::optional<scan::ScanedResultInfo>()>;

    static constexpr std::chrono::milliseconds refreshInterval{1000};
    static constexpr std::chrono::milliseconds toolInterval{30000};

    // toolCommand: the shell command line that prints the link report of the same backend.
    InterfaceInfoController(std::shared_ptr<platform::WirelessInterface> interface, scanning::TimerSource& timers,
                            platform::CommandRunner& commands, QString toolCommand,
                            ConnectedNetworkSource connectedNetwork, QObject* parent = nullptr);
    ~InterfaceInfoController() override;

    std::shared_ptr<platform::WirelessInterface> currentInterface() const { return interface_; }
    // Pauses the refresh around the switch so no tick reads a half-switched interface.
    void interfaceSelected(std::shared_ptr<platform::WirelessInterface> interface);

    void startInterfaceTabGraphRefresh();
    void stopInterfaceTabGraphRefresh();
    void pauseTimer();
    void resumeTimer();
    bool isRefreshPaused() const { return pauseStart_.isValid(); }

    // The tab became the selected one (or stopped being it).
    void setTabShown(bool shown);
    bool isTabShown() const { return tabShown_; }

    // One refresh tick; the timer calls it.
    void updateInterfaceInfoTab();
    // Runs the tool and the directed scan in the background; ignored while a run is under way.
    void executeAirPortCommand();
    bool isToolTimerPending() const { return toolTimer_ != nullptr && toolTimer_->isValid(); }

    void changePower(bool on);
    void disconnect();

    const InterfaceFields& fields() const { return fields_; }
    // Where each field's text came from at the last refresh of the shown tab.
    const QMap<QString, QString>& fieldSources() const { return fieldSources_; }
    const scan::ScanedResultInfo& currentNetworkDetails() const { return currentNetworkDetails_; }
    // RSSI minus noise while powered and associated; nothing otherwise.
    std::optional<int> signalToNoise() const { return signalToNoise_; }
    const QList<InterfaceSample>& graphDataPoints() const { return samples_.samples(); }
    QString mcsInx() const { return mcsInx_; }
    // Waits for the tool run and directed scan under way, delivering their results; for tests
    // and shutdown.
    void waitForBackgroundWork() { work_.waitForDone(); }

signals:
    void fieldsChanged();
    void samplesChanged();
    void reportItemVisibleChanged(bool visible);
    // setPower or disassociate was refused; the text is the platform's.
    void actionFailed(const platform::PlatformError& error);

private:
    void resetInferfaceInfoDetails();
    void scanForCurrentNetworkDetails(const std::shared_ptr<platform::WirelessInterface>& interface,
                                      const scan::ScanedResultInfo& record);
    void scheduleTimerOnMainThread();
    void applyElementDetails(const scan::ScanedResultInfo& scanned);

    std::shared_ptr<platform::WirelessInterface> interface_;
    scanning::TimerSource& timers_;
    platform::CommandRunner& commands_;
    QString toolCommand_;
    ConnectedNetworkSource connectedNetwork_;

    std::unique_ptr<scanning::Timer> refreshTimer_;
    QDateTime previousFireDate_;
    QDateTime pauseStart_;
    std::unique_ptr<scanning::Timer> toolTimer_;
    bool toolRunning_ = false;
    bool tabShown_ = false;

    scan::ScanedResultInfo currentNetworkDetails_;
    std::optional<int> signalToNoise_;
    QList<int> supportedChannelsArray_;
    QString mcsInx_;
    InterfaceFields fields_;
    QMap<QString, QString> fieldSources_;
    InterfaceSamples samples_;
    // Last: destroyed first, so no hand-off reaches the members above after they are gone.
    scanning::BackgroundWork work_;
};

} // namespace connection
