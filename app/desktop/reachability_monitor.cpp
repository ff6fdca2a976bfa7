#include "app/desktop/reachability_monitor.h"

#include "app/desktop/log_category.h"

#include <QNetworkInformation>

namespace app::desktop {

namespace {

ReachabilityMonitor::Status statusOf(QNetworkInformation::Reachability reachability)
{
    switch (reachability) {
    case QNetworkInformation::Reachability::Online:
        return ReachabilityMonitor::Status::Reachable;
    case QNetworkInformation::Reachability::Disconnected:
        return ReachabilityMonitor::Status::NotReachable;
    default:
        // Local or site reachability is not the internet, but the listener's address is still good.
        return ReachabilityMonitor::Status::Unknown;
    }
}

} // namespace

ReachabilityMonitor::ReachabilityMonitor(AddressLookup address, QObject* parent)
    : QObject(parent), address_(std::move(address))
{
}

void ReachabilityMonitor::start()
{
    if (listening_)
        return;
    listening_ = true;
    if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability)) {
        qCInfo(lcDesktop) << "no reachability backend; the server address is shown as it is";
        statusChanged(Status::Unknown);
        return;
    }
    QNetworkInformation* information = QNetworkInformation::instance();
    connect(information, &QNetworkInformation::reachabilityChanged, this,
            [this](QNetworkInformation::Reachability reachability) {
                if (listening_)
                    statusChanged(statusOf(reachability));
            });
    statusChanged(statusOf(information->reachability()));
}

void ReachabilityMonitor::stop() { listening_ = false; }

void ReachabilityMonitor::statusChanged(Status status)
{
    const QString address = status == Status::NotReachable ? QString() : address_();
    if (address != serverAddress_) {
        serverAddress_ = address;
        emit serverAddressChanged(serverAddress_);
    }
    if (status == Status::Reachable)
        emit becameReachable();
}

} // namespace app::desktop
