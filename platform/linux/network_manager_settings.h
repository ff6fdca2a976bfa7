#pragma once

#include "platform/linux/network_manager_client.h"

#include <optional>

// Translation between Skyvane's requests and NetworkManager's profile dictionaries, kept apart
// from the D-Bus traffic so the exact key names and value types live in one place.
namespace platform::nm_settings {

// The profile for joining an infrastructure network, private to userName.
NmConnectionSettings infrastructure(const NmConnectRequest& request, const QString& userName, const QString& uuid);

// The profile for an ad-hoc network; an error when NetworkManager could not run it as asked.
NmResult<NmConnectionSettings> adHoc(const QByteArray& ssid, int channel, NmSecurityKind security,
                                     const QString& passphrase, const QString& userName, const QString& uuid);

// The Wi-Fi part of a stored profile; nullopt for profiles of other connection types.
std::optional<NmWifiProfile> wifiProfile(const QString& connectionPath, const NmConnectionSettings& settings);

// Reads the secrets out of GetSecrets answers, with the user name taken from the profile itself.
NmSecrets secrets(const NmConnectionSettings& profile, const NmConnectionSettings& wirelessSecurity,
                  const NmConnectionSettings& eap);

} // namespace platform::nm_settings
