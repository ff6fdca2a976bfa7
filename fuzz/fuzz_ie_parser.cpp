#include "scan/scaned_result_info.h"

#include <QByteArray>

#include <array>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray elements(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    // The first byte also picks a width so the rate completion meets every width rule.
    static constexpr std::array<int, 6> widths = {0, 20, 40, 80, 160, 30};
    ScanedResultInfo record;
    record.bssid = QStringLiteral("00:11:22:33:44:55");
    record.channelWidth = size > 0 ? widths[data[0] % widths.size()] : 20;
    record.shortGIFor24MhzEnabled = -1;
    record.shortGIFor40MhzEnabled = -1;

    record.parseInformationElement(elements);
    record.populateMaxDataRate();
    record.getMaxDataRate();
    return 0;
}
