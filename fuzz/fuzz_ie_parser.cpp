#include "scan/scan_result_derivation.h"
#include "scan/scaned_result_info.h"

#include <QByteArray>

#include <array>
#include <cstdlib>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray elements(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

    // The first byte also picks a width so the rate completion meets every width rule.
    static constexpr std::array<int, 6> widths = {0, 20, 40, 80, 160, 30};
    scan::ScanedResultInfo record;
    record.bssid = QStringLiteral("00:11:22:33:44:55");
    record.channelWidth = size > 0 ? widths[data[0] % widths.size()] : 20;
    record.shortGIFor24MhzEnabled = -1;
    record.shortGIFor40MhzEnabled = -1;

    // The derivation walks the same bytes with its own rules for cut-off elements.
    const platform::ScanResult derived = scan::deriveScanResult(scan::RawBssFacts{record.bssid, 2437, -50, 0, 0, 100, elements});
    if (derived.informationElementData.size() != elements.size())
        std::abort();

    record.parseInformationElement(elements);
    record.populateMaxDataRate();
    record.getMaxDataRate();
    return 0;
}
