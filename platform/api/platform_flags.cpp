#include "platform/api/platform_flags.h"

#include <atomic>

namespace platform {
namespace {
std::atomic<bool> oldestRelease{false};
}

bool isOSSnowLeopard() { return oldestRelease.load(std::memory_order_relaxed); }

void setOSSnowLeopard(bool oldest) { oldestRelease.store(oldest, std::memory_order_relaxed); }

ScopedOSSnowLeopard::ScopedOSSnowLeopard(bool oldest) : previous_(isOSSnowLeopard())
{
    setOSSnowLeopard(oldest);
}

ScopedOSSnowLeopard::~ScopedOSSnowLeopard() { setOSSnowLeopard(previous_); }

} // namespace platform
