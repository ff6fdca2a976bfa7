#include "interface/interface_samples.h"

namespace connection {

bool isPlaceholderSample(const platform::InterfaceSnapshot& link, core::InterfaceGeneration generation)
{
    if (core::isOSSnowLeopard(generation))
        return link.interfaceState == platform::InterfaceStateInactive;
    return link.transmitRate == 0.0;
}

InterfaceSample sampleFor(const platform::InterfaceSnapshot& link, core::InterfaceGeneration generation,
                          const QDateTime& now)
{
    InterfaceSample sample;
    if (isPlaceholderSample(link, generation)) {
        sample.rssi = placeholderDbm;
        sample.noise = placeholderDbm;
        sample.bssid = placeholderBssid;
    } else {
        sample.rssi = link.rssiValue;
        sample.noise = link.noiseMeasurement;
        sample.bssid = link.bssid;
    }
    sample.singnalToNoise = sample.rssi - sample.noise;
    sample.lastSeen = now;
    return sample;
}

void InterfaceSamples::add(const InterfaceSample& sample)
{
    if (samples_.size() >= maxInterfaceSamples)
        samples_.removeLast();
    samples_.prepend(sample);
}

} // namespace connection
