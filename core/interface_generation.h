#pragma once

// Every wireless call exists in two forms: the oldest supported release's and the later one's,
// which number modes, security and PHY standards differently. A backend reports which one it
// speaks; code that reads those numbers is handed the backend's generation.
namespace core {

enum class InterfaceGeneration { OldestRelease, Later };

constexpr bool isOSSnowLeopard(InterfaceGeneration generation)
{
    return generation == InterfaceGeneration::OldestRelease;
}

} // namespace core
