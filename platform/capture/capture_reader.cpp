#include "platform/capture/capture_reader.h"

#include "platform/capture/packet_decoder.h"

#include <QFile>

#include <pcap/pcap.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace platform::capture {
namespace {

struct PcapCloser {
    void operator()(pcap_t* handle) const { pcap_close(handle); }
};
using PcapHandle = std::unique_ptr<pcap_t, PcapCloser>;

// libpcap's messages may carry line breaks; a reason is shown on one line.
QString oneLine(const char* message)
{
    return QString::fromLocal8Bit(message).simplified();
}

QString openFailure(const char* libpcapMessage)
{
    const QString message = oneLine(libpcapMessage);
    if (message == QLatin1String("unknown file format"))
        return QStringLiteral("not a pcap or pcapng capture file (unknown file format)");
    return message;
}

bool isSupportedLinkType(int linkType)
{
    return linkType == LinkTypeRadiotap || linkType == LinkTypeIeee80211 || linkType == LinkTypePrism;
}

class PcapCaptureReader final : public CaptureReader {
public:
    PcapCaptureReader(PcapHandle handle, int linkType) : handle_(std::move(handle)), linkType_(linkType) {}

    ReadStatus next(BeaconFrame& out) override
    {
        // libpcap gives no promise about reading on after the end or an error.
        if (finished_)
            return *finished_;
        for (;;) {
            pcap_pkthdr* header = nullptr;
            const u_char* data = nullptr;
            const int rc = pcap_next_ex(handle_.get(), &header, &data);
            if (rc == 1) {
                ++frameNumber_;
                auto facts = decodePacket(linkType_, data, header->caplen, header->len);
                if (!facts)
                    continue;
                out.frameNumber = frameNumber_;
                out.timestampUs = static_cast<std::int64_t>(header->ts.tv_sec) * 1'000'000 + header->ts.tv_usec;
                out.facts = std::move(*facts);
                return ReadStatus::Frame;
            }
            if (rc == PCAP_ERROR_BREAK) {
                finished_ = ReadStatus::End;
            } else {
                error_ = QStringLiteral("read error after frame %1: %2")
                             .arg(frameNumber_)
                             .arg(oneLine(pcap_geterr(handle_.get())));
                finished_ = ReadStatus::Error;
            }
            return *finished_;
        }
    }

    QString errorString() const override { return error_; }
    int linkType() const override { return linkType_; }

private:
    PcapHandle handle_;
    int linkType_;
    std::int64_t frameNumber_ = 0;
    std::optional<ReadStatus> finished_;
    QString error_;
};

} // namespace

std::unique_ptr<CaptureReader> CaptureReader::open(const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) -> std::unique_ptr<CaptureReader> {
        if (error)
            *error = reason;
        return nullptr;
    };

    // Opened here rather than by pcap_open_offline, which would take "-" to mean standard input.
    std::FILE* file = std::fopen(QFile::encodeName(path).constData(), "rb");
    if (!file)
        return fail(qt_error_string(errno));
    struct stat status {};
    if (::fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0) {
        std::fclose(file);
        return fail(QStringLiteral("empty file, not a pcap or pcapng capture"));
    }

    char errorBuffer[PCAP_ERRBUF_SIZE] = {};
    PcapHandle handle(pcap_fopen_offline(file, errorBuffer));
    if (!handle) {
        std::fclose(file);  // libpcap closes the file only once it has taken it over
        return fail(openFailure(errorBuffer));
    }

    const int linkType = pcap_datalink(handle.get());
    if (!isSupportedLinkType(linkType)) {
        const char* name = pcap_datalink_val_to_name(linkType);
        return fail(name ? QStringLiteral("unsupported link type %1 (%2)").arg(linkType).arg(QLatin1String(name))
                         : QStringLiteral("unsupported link type %1").arg(linkType));
    }
    return std::make_unique<PcapCaptureReader>(std::move(handle), linkType);
}

} // namespace platform::capture
