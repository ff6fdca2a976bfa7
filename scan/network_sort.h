#pragma once

#include "platform/api/scan_result.h"

// Orderings of raw scan results, one per sortable property: each says where `network` stands
// relative to `other` in ascending order.
enum class ComparisonResult : int { Ascending = -1, Same = 0, Descending = 1 };

ComparisonResult compareSSID(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareBSSID(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareChannel(const platform::ScanResult& network, const platform::ScanResult& other);
// By the set of supported PHY standards read as a number, so a network reaching a newer
// standard sorts after one that does not, whichever interface generation is active.
ComparisonResult comparePhyMode(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareSecurityMode(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareRSSI(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareNoise(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareIBSS(const platform::ScanResult& network, const platform::ScanResult& other);
ComparisonResult compareSN(const platform::ScanResult& network, const platform::ScanResult& other);
