#pragma once

// Bands and channel widths as every layer counts them. A channel of 14 or below is 2.4 GHz,
// above is 5 GHz; a width code counts 20, 40, 80 and 160 MHz as 1 to 4.
namespace core {

enum class ChannelBand : int { Unknown = 0, Band2GHz = 1, Band5GHz = 2 };

enum class ChannelWidthCode : int { Unknown = 0, Width20MHz = 1, Width40MHz = 2, Width80MHz = 3, Width160MHz = 4 };

constexpr int highest24GhzChannel = 14;

constexpr bool is24GhzChannel(int channel) { return channel <= highest24GhzChannel; }

// Unknown for channel numbers below 1.
ChannelBand bandForChannel(int channel);
// 2.4 or 5.0; a band the service did not report is taken from the channel number.
double bandGhz(ChannelBand band, int channel);
// 0 for an unknown code.
int widthMhz(ChannelWidthCode code);
// 20 MHz for any width that has no code of its own.
ChannelWidthCode widthCodeForMhz(int widthMhz);

} // namespace core
