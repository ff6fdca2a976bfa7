#pragma once

#include <cstdint>

// The 802.11 element IDs and vendor-element identifiers the decoders read, named in one place.
namespace scan::element {

constexpr std::uint8_t Ssid = 0;
constexpr std::uint8_t SupportedRates = 1;
constexpr std::uint8_t DsParameterSet = 3;
constexpr std::uint8_t Country = 7;
constexpr std::uint8_t BssLoad = 11;
constexpr std::uint8_t HtCapabilities = 45;
constexpr std::uint8_t Rsn = 48;
constexpr std::uint8_t ExtendedRates = 50;
constexpr std::uint8_t MobilityDomain = 54;
constexpr std::uint8_t HtOperation = 61;
// Cisco's device-name element: the access point's name in a fixed sixteen-byte field.
constexpr std::uint8_t DeviceName = 133;
constexpr std::uint8_t VhtCapabilities = 191;
constexpr std::uint8_t VhtOperation = 192;
constexpr std::uint8_t VendorSpecific = 221;

// Organisation identifiers that lead cipher and AKM suites and vendor elements.
constexpr std::uint8_t IeeeOui[3] = {0x00, 0x0F, 0xAC};
constexpr std::uint8_t MicrosoftOui[3] = {0x00, 0x50, 0xF2};

// Vendor types (the byte after the OUI). The Microsoft OUI carries WPA and WPS; the AP-name
// element is recognised by type and subtype alone, whatever its OUI.
constexpr std::uint8_t WpaVendorType = 1;
constexpr std::uint8_t WpsVendorType = 4;
constexpr std::uint8_t ApNameVendorType = 1;
constexpr std::uint8_t ApNameVendorSubtype = 3;

} // namespace scan::element

