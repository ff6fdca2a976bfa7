#pragma once

#include "core/interface_generation.h"
#include "platform/api/wireless_types.h"

#include <QDateTime>
#include <QList>
#include <QString>

// The rolling signal and noise samples of the interface graph: one a refresh, newest first,
// five minutes at one a second.
namespace connection {

struct InterfaceSample {
    int rssi = 0;
    int noise = 0;
    QString bssid;
    int singnalToNoise = 0;
    QDateTime lastSeen;
};

constexpr int maxInterfaceSamples = 300;
constexpr int placeholderDbm = -100;
inline const QString placeholderBssid = QStringLiteral("00:00:00:AA:BB:CC");

// The interface's own reading, or the floor placeholder when it is not associated: on the
// oldest release an inactive state says so, on later ones a transmit rate of exactly zero.
InterfaceSample sampleFor(const platform::InterfaceSnapshot& link, core::InterfaceGeneration generation,
                          const QDateTime& now);
bool isPlaceholderSample(const platform::InterfaceSnapshot& link, core::InterfaceGeneration generation);

class InterfaceSamples {
public:
    void add(const InterfaceSample& sample);
    const QList<InterfaceSample>& samples() const { return samples_; }

private:
    QList<InterfaceSample> samples_;
};

} // namespace connection
