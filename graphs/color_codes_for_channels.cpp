#include "graphs/color_codes_for_channels.h"

#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"

#include <utility>

namespace graphs {

ColorCodesForChannels::ColorCodesForChannels(std::vector<ColourCodePtr> colours) : colorCodes_(std::move(colours)) {}

void ColorCodesForChannels::addColorCode(ColourCodePtr colour)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    colorCodes_.push_back(std::move(colour));
}

ColourCodePtr ColorCodesForChannels::getColorCode(const scan::ScanedResultInfo* record)
{
    if (!record)
        return nullptr;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (const auto found = assignedCodes_.constFind(record->bssid); found != assignedCodes_.cend())
        return found.value();
    if (!scan::ScannerUtils::hasValue(record->bssid) || colorCodes_.empty())
        return nullptr;
    ColourCodePtr colour = colorCodes_[static_cast<std::size_t>(currentIndex_)];
    assignedCodes_.insert(record->bssid, colour);
    if (static_cast<std::size_t>(++currentIndex_) >= colorCodes_.size())
        currentIndex_ = 0;
    return colour;
}

std::vector<ColourCodePtr> ColorCodesForChannels::colorCodes() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return colorCodes_;
}

int ColorCodesForChannels::currentIndex() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return currentIndex_;
}

QString ColorCodesForChannels::description() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    QString list = QStringLiteral("(");
    for (std::size_t i = 0; i < colorCodes_.size(); ++i) {
        list += QLatin1String(i == 0 ? "\n    " : ",\n    ");
        list += colorCodes_[i]->description();
    }
    list += QLatin1String("\n)");
    return QString::asprintf("currentIndex=%d and codes are=", currentIndex_) + list;
}

} // namespace graphs
