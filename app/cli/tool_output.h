#pragma once

#include "core/interface_generation.h"
#include "platform/api/wireless_types.h"

#include <QByteArray>
#include <QList>
#include <QString>

// The text skyvane-cli prints for -s, -s -x and -I. The scanner reads these back: a listing line
// keeps the SSID in its first 32 characters and blank-separated fields after them, and the link
// report never puts "MCS:" on its first line.
namespace app::cli {

constexpr qsizetype kSsidColumns = 32;

QString scanListingHeading();
// SSID right-aligned in 32 characters, a blank, then BSSID, RSSI, CHANNEL, HT, CC, SECURITY.
QString scanListingLine(const platform::ScanResult& network);
// The heading, then one line per network; every line ends in a newline.
QString scanListing(const QList<platform::ScanResult>& networks);

// An XML property list: an array with one dictionary per network; PHY modes are named as the
// backend's interface generation names them.
QByteArray scanPropertyList(const QList<platform::ScanResult>& networks, core::InterfaceGeneration generation);

// One right-aligned "key: value" line per fact of the current link; with explain, each line
// ends in the source the backend named for it, in brackets.
QString linkReport(const platform::InterfaceSnapshot& snapshot, core::InterfaceGeneration generation,
                   bool explain = false);

} // namespace app::cli
