#pragma once

#include "app/desktop/desktop_arguments.h"
#include "app/desktop/quit_sequence.h"
#include "app/desktop/review_window.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QThread;

namespace platform {
class ShellCommandRunner;
class WirelessInterface;
class SystemClock;
}
namespace scanning {
class QtTimerSource;
class ResultsTableModel;
class ScanDatabase;
class ScanTestDriver;
}
namespace scanning::view {
class ScannerTab;
}
class SettingsStore;
namespace graphs {
class GraphViewTabSet;
}
namespace graphs::view {
class GraphTabWidget;
class ReportGraphImages;
}
namespace sensor {
class SensorListenerSession;
}

// The skyvane program's composition root: builds the backend, settings, database, scan driver,
// results model, events and windows in launch order, and runs the quit sequence.
namespace app::desktop {

class ConnectedSsidTab;
class InterfaceStateReactions;
class MonitorWindows;
class ReachabilityMonitor;
class ScanMainWindow;
class WiFiTurnedOffWindow;

class DesktopApplication : public QObject {
    Q_OBJECT
public:
    // Shows a reason the program cannot go on (or an error the user must see) as plain text.
    using ErrorReporter = std::function<void(const QString&)>;

    DesktopApplication(DesktopArguments arguments, ErrorReporter reportError, QObject* parent = nullptr);
    ~DesktopApplication() override;

    // The launch sequence; false after reporting why the program cannot run.
    bool launch();

    ScanMainWindow* mainWindow() const { return mainWindow_.get(); }
    scanning::ScanTestDriver* driver() const { return driver_.get(); }
    scanning::ResultsTableModel* results() const { return results_.get(); }
    InterfaceStateReactions* interfaceReactions() const { return reactions_; }
    ReachabilityMonitor* reachability() const { return reachability_; }
    MonitorWindows* monitorWindows() const { return monitors_; }
    graphs::view::GraphTabWidget* graphTabs() const { return graphTabs_; }
    WiFiTurnedOffWindow* wifiTurnedOffWindow() const { return turnWiFiOnOffWindow_; }
    ReviewWindow* reviewWindow() const { return reivewController_; }
    ConnectedSsidTab* connectedSsidTab() const { return connectedSsid_.get(); }
    QString backendStatus() const;
    sensor::SensorListenerSession* sensorListener() const { return sensorListener_.get(); }
    std::shared_ptr<platform::WirelessInterface> currentInterface() const;

public slots:
    void terminate();

signals:
    // The database is closed and the windows are gone: the event loop may end.
    void terminated();

private:
    void quitDecided(QuitSequence::Decision decision);
    void showReviewWindow();
    void showModeAlert(const QString& messageText);
    void startSensorListener();
    void addSensorListenerTab();
    void addMonitorWindows(scanning::view::ScannerTab* tab);

    struct Parts;
    DesktopArguments arguments_;
    ErrorReporter reportError_;
    std::unique_ptr<Parts> parts_;
    std::unique_ptr<sensor::SensorListenerSession> sensorListener_;
    std::unique_ptr<scanning::ScanDatabase> database_;
    std::unique_ptr<scanning::ScanTestDriver> driver_;
    std::unique_ptr<graphs::GraphViewTabSet> graphs_;
    std::unique_ptr<scanning::ResultsTableModel> results_;
    std::unique_ptr<graphs::view::ReportGraphImages> reportImages_;
    std::unique_ptr<QuitSequence> quit_;
    std::unique_ptr<ScanMainWindow> mainWindow_;
    std::unique_ptr<ConnectedSsidTab> connectedSsid_;
    InterfaceStateReactions* reactions_ = nullptr;
    ReachabilityMonitor* reachability_ = nullptr;
    MonitorWindows* monitors_ = nullptr;
    graphs::view::GraphTabWidget* graphTabs_ = nullptr;
    WiFiTurnedOffWindow* turnWiFiOnOffWindow_ = nullptr;
    QPointer<ReviewWindow> reivewController_;
    std::unique_ptr<QThread> launchAnnouncer_;
    bool terminated_ = false;
};

} // namespace app::desktop
