#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace scan {

int ScannerUtils::getMCSIndexUsingTXRate(double txRateMbps, int channelWidthMhz, const ScanedResultInfo& networkInfo)
{
    float base = 7.2F;
    std::optional<std::int8_t> shortGI;
    if (channelWidthMhz == 40) {
        base = 15.0F;
        shortGI = networkInfo.shortGIFor40MhzEnabled;
    } else if (channelWidthMhz == 80) {
        base = 32.5F;
        shortGI = networkInfo.shortGIFor40MhzEnabled;
    } else if (channelWidthMhz == 160) {
        base = 65.0F;
        shortGI = networkInfo.shortGIFor40MhzEnabled;
    } else if (channelWidthMhz == 20) {
        shortGI = networkInfo.shortGIFor24MhzEnabled;
    } else if (channelWidthMhz >= 21) {
        shortGI = networkInfo.shortGIFor40MhzEnabled;
    } else {
        base = static_cast<float>(7.2 * 0.9);
    }
    if (shortGI && *shortGI == 0) {
        base = base + base / -10;
    }

    const float steps = std::floor(static_cast<float>(txRateMbps) / base);
    float index = steps - 2 * std::trunc(steps / 10);
    if (channelWidthMhz < 80) {
        index = std::ceil(index) - 1;
    } else if (index > 10) {
        index = index - 10 - 1;
    }
    // The rate comes from the driver; a value that no integer can hold gives no index.
    if (!(index > static_cast<float>(std::numeric_limits<int>::min()) &&
          index < static_cast<float>(std::numeric_limits<int>::max()))) {
        return 0;
    }
    return index == -1 ? 0 : static_cast<int>(index);
}

} // namespace scan
