#pragma once

#include "graphs/colour_code.h"

#include <QHash>
#include <QString>

#include <mutex>
#include <vector>

namespace scan {
class ScanedResultInfo;
}

namespace graphs {

// The colours of one channel group, dealt round-robin to the group's access points by BSSID.
// An access point keeps its colour for the life of the group. Thread-safe.
class ColorCodesForChannels {
public:
    ColorCodesForChannels() = default;
    explicit ColorCodesForChannels(std::vector<ColourCodePtr> colours);
    ColorCodesForChannels(const ColorCodesForChannels&) = delete;
    ColorCodesForChannels& operator=(const ColorCodesForChannels&) = delete;

    void addColorCode(ColourCodePtr colour);
    // Null for a null record, a record without a BSSID or a group without colours.
    ColourCodePtr getColorCode(const scan::ScanedResultInfo* record);

    std::vector<ColourCodePtr> colorCodes() const;
    int currentIndex() const;
    // "currentIndex=%d and codes are=%@" with the index and the list of colours.
    QString description() const;

private:
    mutable std::mutex mutex_;
    std::vector<ColourCodePtr> colorCodes_;
    QHash<QString, ColourCodePtr> assignedCodes_;
    int currentIndex_ = 0;
};

} // namespace graphs
