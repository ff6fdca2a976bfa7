#pragma once

#include "graphs/color_codes_for_channels.h"

#include <QHash>
#include <QString>

#include <memory>
#include <mutex>

namespace scan {
class ScanedResultInfo;
}

namespace graphs {

// Gives every access point one colour for the life of the process, drawn from the colours of
// its primary channel's group so that neighbours on the air are told apart. Thread-safe.
class ColorCodesManager {
public:
    static constexpr const char* resourcePath = ":/ColorCodesMapping.plist";

    // The process-wide manager, loaded from the built-in colour table on first use.
    static ColorCodesManager& sharedColorManager();

    // A manager with the groups of the given property list (tests); a missing or unreadable
    // file leaves it without groups.
    explicit ColorCodesManager(const QString& plistPath);
    ColorCodesManager(const ColorCodesManager&) = delete;
    ColorCodesManager& operator=(const ColorCodesManager&) = delete;

    // Name of the channel group a primary channel belongs to, e.g. "9-14" or "149".
    static QString getKeyForColorCodeChannels(int channel);

    // The record's colour in the group of its originalChannel; null when that group is not
    // loaded, the group has no colours or the record has no BSSID.
    ColourCodePtr getColorCode(const scan::ScanedResultInfo* record);

    // The group stored under a group key (name + "-"), or null.
    std::shared_ptr<ColorCodesForChannels> groupForKey(const QString& groupKey) const;
    int groupCount() const;

private:
    void loadColors(const QString& plistPath);

    mutable std::mutex mutex_;
    QHash<QString, std::shared_ptr<ColorCodesForChannels>> channelsToCodesDictionary_;
};

} // namespace graphs
