#pragma once

#include "platform/api/scan_result.h"

namespace scan {

// Orderings of raw scan results, one per sortable property: each says where `network` stands
// relative to `other` in ascending order.
enum class ComparisonResult : int { Ascending = -1, Same = 0, Descending = 1 };

ComparisonResult compareSSID(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareBSSID(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareChannel(const platform::ScanResult& network, const platform::ScanResult& other);
// By the PHY-mode code each network shows: that of the newest standard it supports, in the
// numbering of the given interface generation.
ComparisonResult comparePhyMode(const platform::ScanResult& network, const platform::ScanResult& other,
                                core::InterfaceGeneration generation);
// The code of the newest standard the network supports; -1 when it supports none.
int phyModeCode(const platform::ScanResult& network, core::InterfaceGeneration generation);
ComparisonResult compareSecurityMode(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareRSSI(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareNoise(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareIBSS(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareSN(const platform::ScanResult& network, const platform::ScanResult& other);

} // namespace scan
