#pragma once

#include <QObject>
#include <QString>

#include <functional>

// Whether this machine reaches the internet, from NetworkManager through Qt's network
// information, and what follows from a change: the address the sensor listener announces,
// and, once reachable again, the Wi-Fi-off sheet's end and a fresh interface tab.
namespace app::desktop {

class ReachabilityMonitor : public QObject {
    Q_OBJECT
public:
    enum class Status { NotReachable, Reachable, Unknown };
    // This machine's address on the current network, as the sensor listener shows it.
    using AddressLookup = std::function<QString()>;

    explicit ReachabilityMonitor(AddressLookup address, QObject* parent = nullptr);

    // Starts listening to the system's reachability; without a backend for it the status stays
    // unknown and the address is shown as if reachable, as nothing says otherwise.
    void start();
    void stop();
    void statusChanged(Status status);
    QString serverAddress() const { return serverAddress_; }

signals:
    void serverAddressChanged(const QString& address);
    void becameReachable();

private:
    AddressLookup address_;
    QString serverAddress_;
    bool listening_ = false;
};

} // namespace app::desktop
