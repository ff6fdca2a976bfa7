#pragma once

#include "platform/sim/simulated_access_point.h"

#include <QByteArray>

// Turns an access point's description into the capability field and element bytes it beacons.
namespace platform::sim {

constexpr char simulatedCountryCode[] = "DE";

std::uint16_t capabilityInfoFor(const SimulatedAccessPoint& ap);

// The elements with ssidField in the SSID element (the hidden form in beacons, the real name in
// a directed probe response). loadOffset receives where the BSS load body sits, or -1.
QByteArray elementsFor(const SimulatedAccessPoint& ap, const QByteArray& ssidField, qsizetype* loadOffset = nullptr);

// Fills capabilityInfo, beaconElements and bssLoadOffset from the description.
void buildBeacon(SimulatedAccessPoint& ap);

} // namespace platform::sim
