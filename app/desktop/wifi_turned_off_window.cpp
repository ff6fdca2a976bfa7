#include "app/desktop/wifi_turned_off_window.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace app::desktop {

WiFiTurnedOffWindow::WiFiTurnedOffWindow(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("wifiTurnedOffWindow"));
    setAccessibleName(tr("Wi-Fi is turned off"));
    setWindowTitle(tr("Wi-Fi is turned off"));
    setWindowModality(Qt::WindowModal);

    auto* text = new QLabel(tr("Wi-Fi is turned off. Skyvane needs it on to scan."), this);
    text->setObjectName(QStringLiteral("wifiTurnedOffText"));
    text->setTextFormat(Qt::PlainText);
    auto* turnOn = new QPushButton(tr("&Turn On"), this);
    turnOn->setObjectName(QStringLiteral("turnWiFiOnButton"));
    turnOn->setAccessibleName(tr("Turn Wi-Fi on"));
    turnOn->setDefault(true);
    auto* leave = new QPushButton(tr("&Leave As Is"), this);
    leave->setObjectName(QStringLiteral("leaveWiFiAsIsButton"));
    leave->setAccessibleName(tr("Leave Wi-Fi as is"));
    connect(turnOn, &QPushButton::clicked, this, &WiFiTurnedOffWindow::turnWiFiOn);
    connect(leave, &QPushButton::clicked, this, &WiFiTurnedOffWindow::leaveWiFiAsIs);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(leave);
    buttons->addWidget(turnOn);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(buttons);
}

void WiFiTurnedOffWindow::setCurrentInterface(std::shared_ptr<platform::WirelessInterface> interface)
{
    currentInterface_ = std::move(interface);
}

void WiFiTurnedOffWindow::turnWiFiOn()
{
    if (currentInterface_ && !currentInterface_->snapshot().powerOn) {
        if (const platform::MaybeError error = currentInterface_->setPower(true))
            emit powerFailed(error->description);
    }
    done(1);
}

void WiFiTurnedOffWindow::leaveWiFiAsIs()
{
    done(0);
}

} // namespace app::desktop
