#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QMenu;

namespace app {
class ApplicationEvents;
}
namespace core {
class UserSettings;
}
namespace platform {
class CommandRunner;
class WirelessClient;
class WirelessInterface;
}
namespace scanning {
class ResultsTableModel;
class ScanTestDriver;
class TimerSource;
}
namespace connection {
class InterfaceInfoController;
class JoinController;
namespace view {
class AdHocSheet;
class InterfaceTab;
class JoinSheet;
}
}

// The connection subsystem as the desktop program composes it: the "Connected SSID" tab, its
// controller and timers, the join sheet opened from the results table, the ad-hoc sheet, and
// the connected-network report written when the application's event asks for it.
namespace app::desktop {

class ScanMainWindow;

class ConnectedSsidTab : public QObject {
    Q_OBJECT
public:
    struct Services {
        std::shared_ptr<platform::WirelessClient> client;
        std::shared_ptr<platform::WirelessInterface> interface;
        scanning::TimerSource& timers;
        platform::CommandRunner& commands;
        QString toolCommand;  // prints the link report of the same backend
        scanning::ScanTestDriver& driver;
        scanning::ResultsTableModel& results;
        app::ApplicationEvents& events;
        const core::UserSettings& settings;
        bool explainSources = false;
        // The scanner's Export menu, which gets the report as its item of tag 5.
        QMenu* exportMenu = nullptr;
    };

    ConnectedSsidTab(Services services, ScanMainWindow& window, QObject* parent = nullptr);
    ~ConnectedSsidTab() override;

    connection::InterfaceInfoController& controller() const { return *controller_; }
    connection::view::InterfaceTab* tab() const { return tab_; }

    // Writes the report for a chosen file path off the GUI thread, then says where it went.
    void generateConnectedSSIDReport(const QString& path);

private:
    void chooseReportPath();
    void applyGridLinesSetting();
    void holdScans();
    void releaseScans();

    Services services_;
    ScanMainWindow& window_;
    std::unique_ptr<connection::InterfaceInfoController> controller_;
    std::unique_ptr<connection::JoinController> joins_;
    connection::view::InterfaceTab* tab_ = nullptr;
    connection::view::JoinSheet* joinSheet_ = nullptr;
    connection::view::AdHocSheet* adHocSheet_ = nullptr;
    int reportsRunning_ = 0;
    bool scansHeld_ = false;
};

} // namespace app::desktop
