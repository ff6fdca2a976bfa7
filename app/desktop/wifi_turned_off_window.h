#pragma once

#include "platform/api/wireless_interface.h"

#include <QDialog>

#include <memory>

// The sheet shown over the main window while the Wi-Fi radio is off: turn it on, or leave it.
namespace app::desktop {

class WiFiTurnedOffWindow : public QDialog {
    Q_OBJECT
public:
    explicit WiFiTurnedOffWindow(QWidget* parent);

    void setCurrentInterface(std::shared_ptr<platform::WirelessInterface> interface);

public slots:
    void turnWiFiOn();
    void leaveWiFiAsIs();

signals:
    // Turning the radio on failed; the description is the platform's.
    void powerFailed(const QString& description);

private:
    std::shared_ptr<platform::WirelessInterface> currentInterface_;
};

} // namespace app::desktop
