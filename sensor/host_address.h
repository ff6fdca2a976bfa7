#pragma once

#include <QString>
#include <QStringList>

// The machine's address that the listener shows so the phone knows where to send its readings:
// the first IPv4 address that is not a loopback one.
namespace sensor {

QString hostAddress();
// The same rules over given address texts: empty for no addresses at all, "IP address not
// available" when none of them is a usable IPv4 address.
QString hostAddress(const QStringList& addresses);

} // namespace sensor
