#pragma once

#include "platform/api/platform_error.h"
#include "platform/linux/nl80211_parsers.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <functional>

struct nl_msg;
struct nl_sock;

// Request plumbing to the kernel's nl80211 family: one get or dump in, every reply message out.
// A socket serves one thread at a time (libnl sockets are not thread-safe), so callers open
// their own for each burst of requests; opening costs one round trip.
namespace platform::nl80211 {

using platform::MaybeError;
using platform::PlatformError;

// The domain of errors that come from the kernel's wireless stack or from netlink.
inline constexpr const char* errorDomain = "nl80211";

class RequestSocket {
public:
    RequestSocket();
    ~RequestSocket();
    RequestSocket(const RequestSocket&) = delete;
    RequestSocket& operator=(const RequestSocket&) = delete;

    // Set when the socket is unusable; the rest of the calls then fail with the same error.
    const MaybeError& openError() const { return openError_; }
    // The kernel has no wireless stack (cfg80211 is not loaded), as opposed to any other failure.
    bool wirelessStackMissing() const { return wirelessStackMissing_; }

    using AttributeWriter = std::function<bool(nl_msg*)>;
    using MessageHandler = std::function<void(nl_msg*)>;
    // Sends the command and hands over the replies. A dump whose object list changed while it
    // ran is repeated, and replies reach the handler only from a consistent pass.
    MaybeError request(std::uint8_t command, bool dump, const AttributeWriter& attributes,
                       const MessageHandler& handler);

    QList<InterfaceInfo> interfaces();
    QList<WiphyInfo> wiphys();
    QList<ScanEntry> scanDump(int ifindex, MaybeError* error);
    std::optional<StationInfo> station(int ifindex, const QString& bssid);
    QList<SurveyEntry> survey(int ifindex);
    std::optional<RegulatoryInfo> regulatory(std::uint32_t wiphy);
    // Needs CAP_NET_ADMIN; an empty ssid list probes with the wildcard SSID.
    MaybeError triggerScan(int ifindex, const QList<QByteArray>& ssids);

private:
    MaybeError requestOnce(std::uint8_t command, bool dump, const AttributeWriter& attributes,
                           QList<QByteArray>& replies, bool& interrupted);

    nl_sock* socket_ = nullptr;
    int family_ = -1;
    MaybeError openError_;
    bool wirelessStackMissing_ = false;
};

// A socket subscribed to nl80211 multicast groups, read without blocking.
class EventSocket {
public:
    explicit EventSocket(const QStringList& groups);
    ~EventSocket();
    EventSocket(const EventSocket&) = delete;
    EventSocket& operator=(const EventSocket&) = delete;

    const MaybeError& openError() const { return openError_; }
    int fileDescriptor() const;
    // Reads what is queued. False when the kernel dropped events (the receive buffer overran),
    // in which case anything derived from past events must be read afresh.
    bool drain(QList<Event>& events);
    bool waitReadable(std::chrono::milliseconds timeout) const;

private:
    nl_sock* socket_ = nullptr;
    MaybeError openError_;
};

PlatformError errorFromErrno(int errnoValue, const QString& what);

} // namespace platform::nl80211
