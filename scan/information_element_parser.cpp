#include "scan/element_ids.h"
#include "scan/element_iterator.h"
#include "scan/ieee_ie_frame_utils.h"
#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"
#include "scan/suite_reader.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

namespace scan {

// Several fields are read at bit and byte positions that differ from the 802.11 standard.
// They are kept on purpose: the same access point must show the same values as it always has.
// Bytes that are 0 or 1 print as a one-digit bit string, so those values never match a
// two-bit pattern; the masks below are guarded to reproduce that.

namespace {

enum class Walk { Continue, Stop };

namespace element = scan::element;

class ElementWalk {
public:
    ElementWalk(ScanedResultInfo& record, const QByteArray& data) : record_(record), data_(data)
    {
        rates_.reserve(16);
    }

    void run()
    {
        for (const scan::Element& element : scan::Elements(data_)) {
            rest_ = element.rest;
            length_ = element.declaredLength;
            if (handle(element.id) == Walk::Stop) {
                break;
            }
        }
    }

    QStringList takeRates() { return std::move(rates_); }

private:
    // Reads are bounded by the whole string, not by the element: a short element reads on
    // into the next one, which is what the fixed offsets have always done.
    bool readable(std::size_t index, std::size_t count = 1) const { return rest_.has(index, count); }
    unsigned char body(std::size_t index) const { return rest_[index]; }
    QString latin1(std::size_t index, std::size_t count) const
    {
        return QString::fromLatin1(reinterpret_cast<const char*>(rest_.data() + index),
                                   static_cast<qsizetype>(count));
    }

    Walk handle(unsigned char id)
    {
        switch (id) {
        case element::SupportedRates:
            return rates(true);
        case element::ExtendedRates:
            return rates(false);
        case element::BssLoad:
            bssLoad();
            return Walk::Continue;
        case element::HtCapabilities:
            htCapabilities();
            return Walk::Continue;
        case element::Rsn:
            return rsn();
        case element::MobilityDomain:
            return mobilityDomain();
        case element::HtOperation:
            return htOperation();
        case element::DeviceName:
            deviceName();
            return Walk::Continue;
        case element::VendorSpecific:
            return vendorSpecific();
        default:
            return Walk::Continue;
        }
    }

    Walk rates(bool stripBasicMark)
    {
        for (std::size_t i = 0; i < length_; ++i) {
            if (!readable(i)) {
                return Walk::Stop;
            }
            const unsigned char byte = body(i);
            // The basic-rate mark is the high bit; 0xFF is the HT selector, not a marked rate.
            const unsigned char key = stripBasicMark && byte != 0xFF ? byte & 0x7FU : byte;
            const QString& text = IEEE_IE_FrameUtils::bitRateForByte(key);
            if (!text.isEmpty()) {
                rates_.append(text);
            }
        }
        return Walk::Continue;
    }

    void bssLoad()
    {
        if (readable(0, 2)) {
            record_.connectedClientCount = body(0) + 256 * body(1);
        }
        if (readable(2)) {
            record_.channelUtilization = static_cast<std::int64_t>(std::ceil(body(2) / 255.0 * 100));
        }
    }

    void htCapabilities()
    {
        if (readable(0) && body(0) > 1) {
            record_.shortGIFor24MhzEnabled = (body(0) & 0x04U) != 0 ? 1 : 0;
            record_.shortGIFor40MhzEnabled = (body(0) & 0x02U) != 0 ? 1 : 0;
        }
        // The first MCS byte always counts as a stream; only the next three are examined.
        if (readable(4, 3)) {
            record_.numberOfStreams = 1 + (body(4) != 0) + (body(5) != 0) + (body(6) != 0);
        }
    }

    Walk rsn()
    {
        if (!readable(2, 3)) {
            return Walk::Stop;
        }
        if (rest_.startsWith(2, element::IeeeOui)) {
            if (!readable(5)) {
                return Walk::Stop;
            }
            record_.groupDataChiperEncryption = IEEE_IE_FrameUtils::resolveCipherType(body(5));
        } else {
            record_.groupDataChiperEncryption = QStringLiteral("Vendor specific");
        }
        if (!readable(6)) {
            return Walk::Stop;
        }
        // Only the low byte of the count is used, and at most two suites were ever decoded.
        const int decoded = std::min<int>(body(6), 2);
        scan::SuiteReader suites(rest_, 8);
        QString pairwise = QStringLiteral("");
        for (int i = 0; i < decoded; ++i) {
            const std::optional<scan::Suite> suite = suites.suite();
            if (!suite) {
                return Walk::Stop;
            }
            if (!suite->hasOui(element::IeeeOui)) {
                continue;
            }
            const QString name = IEEE_IE_FrameUtils::resolveCipherType(suite->type);
            pairwise += pairwise.isEmpty() ? name : QStringLiteral(" + ") + name;
        }
        record_.pairWiseChiperEncryption = pairwise;
        return Walk::Continue;
    }

    Walk mobilityDomain()
    {
        if (length_ < 2) {
            return Walk::Continue;
        }
        if (!readable(1)) {
            return Walk::Stop;
        }
        const unsigned char byte = body(1);
        record_.mobilityDomain = byte > 1 && (byte & 0x01U) != 0 ? QStringLiteral("Yes (DS)")
                                                                 : QStringLiteral("Yes (Air)");
        return Walk::Continue;
    }

    Walk htOperation()
    {
        if (!readable(1)) {
            return Walk::Stop;
        }
        const unsigned char offset = body(1);
        if (offset > 1) {
            switch (offset & 0x03U) {
            case 0x01:
                record_.channelOffset = 1;
                break;
            case 0x03:
                record_.channelOffset = -1;
                break;
            case 0x00:
                record_.channelOffset = 0;
                break;
            default:
                break;
            }
        }
        if (record_.channelWidth >= 80) {
            record_.channelOffset = 0;
        }
        if (!readable(2)) {
            return Walk::Stop;
        }
        const unsigned char protection = body(2);
        const unsigned bits = protection > 1 ? protection & 0x03U : 0U;
        switch (bits) {
        case 0x01:
            record_.protectionMode = QStringLiteral("Non Member");
            break;
        case 0x03:
            record_.protectionMode = QStringLiteral("Non HT Mixed");
            break;
        case 0x02:
            record_.protectionMode = QStringLiteral("20 MHz");
            break;
        default:
            record_.protectionMode = QStringLiteral("Disabled");
            break;
        }
        return Walk::Continue;
    }

    void deviceName()
    {
        // The count byte that follows the name never shortened it: the name is all sixteen bytes.
        if (length_ >= 25 && readable(9, 16)) {
            record_.apname = latin1(9, 16);
        }
    }

    Walk vendorSpecific()
    {
        if (!readable(3)) {
            return Walk::Stop;
        }
        const unsigned char type = body(3);
        if (type == element::WpsVendorType) {
            record_.isWPS = 1;
            return Walk::Continue;
        }
        if (type != element::ApNameVendorType) {
            return Walk::Continue;
        }
        if (!readable(4)) {
            return Walk::Stop;
        }
        if (body(4) != element::ApNameVendorSubtype) {
            return Walk::Continue;
        }
        const std::size_t nameLength = length_ > 5 ? length_ - 5 : 0;
        if (!readable(5, nameLength)) {
            return Walk::Stop;
        }
        record_.apname = latin1(5, nameLength);
        return Walk::Continue;
    }

    ScanedResultInfo& record_;
    const QByteArray& data_;
    scan::ByteReader rest_;
    std::size_t length_ = 0;
    QStringList rates_;
};

}  // namespace

void ScanedResultInfo::parseInformationElement(const QByteArray& data)
{
    channelUtilization = -1;
    ElementWalk walk(*this, data);
    walk.run();
    supportedDataRates = walk.takeRates();
    if (!ScannerUtils::hasValue(protectionMode)) {
        protectionMode = QStringLiteral("N/A");
    }
    if (!ScannerUtils::hasValue(mobilityDomain)) {
        mobilityDomain = QStringLiteral("N/A");
    }
}

} // namespace scan
