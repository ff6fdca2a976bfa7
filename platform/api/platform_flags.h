#pragma once

// Which generation of the wireless interface the program talks to. Linux always runs the
// current one; tests switch to the oldest generation to exercise its code paths.
namespace platform {

bool isOSSnowLeopard();
void setOSSnowLeopard(bool oldest);

// Restores the previous flag when it leaves scope, so a test cannot leak its choice.
class ScopedOSSnowLeopard {
public:
    explicit ScopedOSSnowLeopard(bool oldest);
    ~ScopedOSSnowLeopard();
    ScopedOSSnowLeopard(const ScopedOSSnowLeopard&) = delete;
    ScopedOSSnowLeopard& operator=(const ScopedOSSnowLeopard&) = delete;

private:
    bool previous_;
};

} // namespace platform
