#pragma once

#include "platform/api/wireless_interface.h"

#include <QObject>

#include <memory>

// What the program does when the Wi-Fi interface is switched off or starts sharing the
// connection as an access point: it decides when the Wi-Fi-off sheet and the access-point alert
// are shown and closed, and keeps the two guards against re-entry. The windows only show.
namespace app::desktop {

class InterfaceStateReactions : public QObject {
    Q_OBJECT
public:
    static constexpr const char* modeAlertText = "WiFi Scannig is not allowed when internet sharing is enabled.";

    // interface may be null (no Wi-Fi): nothing is observed then.
    explicit InterfaceStateReactions(std::shared_ptr<platform::WirelessInterface> interface,
                                     QObject* parent = nullptr);

    // Starts observing the interface's power and mode notifications.
    void observe();

    bool modeChangeGuard() const { return modeChangeGuard_; }
    bool isModeAlertVisible() const { return modeAlertVisible_; }

public slots:
    void didReceivePowerDidChangeNotification();
    void didReceiveModeDidChangeNotification();
    // The user closed the access-point alert.
    void alertDidEnd();

signals:
    void wifiTurnedOff();
    // The Wi-Fi-off sheet, if shown, closes.
    void wifiTurnedOn();
    void modeAlertRequested(const QString& messageText);

private:
    void observePower();
    void observeMode();
    bool isAccessPointMode() const;

    std::shared_ptr<platform::WirelessInterface> interface_;
    QMetaObject::Connection powerConnection_;
    QMetaObject::Connection modeConnection_;
    bool modeChangeGuard_ = false;
    bool powerChangeGuard_ = false;
    bool modeAlertVisible_ = false;
};

} // namespace app::desktop
