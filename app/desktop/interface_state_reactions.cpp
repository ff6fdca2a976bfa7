#include "app/desktop/interface_state_reactions.h"

#include "app/desktop/log_category.h"
#include "core/interface_generation.h"

namespace app::desktop {

InterfaceStateReactions::InterfaceStateReactions(std::shared_ptr<platform::WirelessInterface> interface,
                                                 QObject* parent)
    : QObject(parent), interface_(std::move(interface))
{
}

void InterfaceStateReactions::observe()
{
    observePower();
    observeMode();
}

void InterfaceStateReactions::observePower()
{
    if (interface_ && !powerConnection_)
        powerConnection_ = connect(interface_.get(), &platform::WirelessInterface::powerDidChange, this,
                                   &InterfaceStateReactions::didReceivePowerDidChangeNotification);
}

void InterfaceStateReactions::observeMode()
{
    if (interface_ && !modeConnection_)
        modeConnection_ = connect(interface_.get(), &platform::WirelessInterface::modeDidChange, this,
                                  &InterfaceStateReactions::didReceiveModeDidChangeNotification);
}

bool InterfaceStateReactions::isAccessPointMode() const
{
    const platform::InterfaceSnapshot snapshot = interface_->snapshot();
    if (core::isOSSnowLeopard(interface_->generation()))
        return snapshot.opMode() == platform::OpModeHostAP;
    return snapshot.interfaceMode == platform::InterfaceModeHostAP;
}

void InterfaceStateReactions::didReceiveModeDidChangeNotification()
{
    if (modeChangeGuard_) {
        if (modeAlertVisible_)
            qCInfo(lcDesktop, "alert is visible and mode is changed to valid one");
        return;
    }
    if (!interface_)
        return;
    modeChangeGuard_ = true;
    disconnect(modeConnection_);
    const bool accessPoint = isAccessPointMode();
    qCInfo(lcDesktop, "didReceiveModeDidChangeNotification....%d", accessPoint ? 1 : 0);
    if (accessPoint) {
        modeAlertVisible_ = true;
        emit modeAlertRequested(QString::fromLatin1(modeAlertText));
        return;
    }
    modeChangeGuard_ = false;
    observeMode();
    if (modeAlertVisible_)
        qCInfo(lcDesktop, "alert is visible and mode is changed to valid one");
}

void InterfaceStateReactions::alertDidEnd()
{
    modeAlertVisible_ = false;
    modeChangeGuard_ = false;
    observeMode();
}

void InterfaceStateReactions::didReceivePowerDidChangeNotification()
{
    disconnect(powerConnection_);
    // A notification already on its way when the observer was removed; the observer stays off,
    // as the guard only spans the dispatch below.
    if (powerChangeGuard_ || !interface_)
        return;
    powerChangeGuard_ = true;
    if (interface_->snapshot().powerOn)
        emit wifiTurnedOn();
    else
        emit wifiTurnedOff();
    observePower();
    powerChangeGuard_ = false;
}

} // namespace app::desktop
