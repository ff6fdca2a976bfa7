#include "platform/linux/nl80211_socket.h"

#include <linux/nl80211.h>
#include <netlink/attr.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/handlers.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>

#include <poll.h>

#include <cerrno>

namespace platform::nl80211 {
namespace {

// The kernel answers within microseconds; anything this slow means the socket is wedged.
constexpr std::chrono::milliseconds replyTimeout{5000};
constexpr int maxDumpAttempts = 3;

PlatformError netlinkError(int libnlError, const QString& what)
{
    PlatformError error;
    error.domain = QString::fromLatin1(errorDomain);
    error.code = libnlError < 0 ? -libnlError : libnlError;
    error.description = what + QStringLiteral(": ") + QString::fromUtf8(nl_geterror(libnlError));
    return error;
}

PlatformError missingStackError()
{
    PlatformError error;
    error.domain = QString::fromLatin1(errorDomain);
    error.code = NLE_OBJ_NOTFOUND;
    error.description = QStringLiteral("No Wi-Fi support in this system's kernel (cfg80211 is not loaded)");
    return error;
}

bool waitForInput(int fd, std::chrono::milliseconds timeout)
{
    pollfd entry{fd, POLLIN, 0};
    int result = 0;
    do {
        result = ::poll(&entry, 1, static_cast<int>(timeout.count()));
    } while (result < 0 && errno == EINTR);
    return result > 0;
}

struct Exchange {
    QList<QByteArray>* replies = nullptr;
    int kernelError = 0;
    bool done = false;
    bool interrupted = false;
};

int keepReply(nl_msg* message, void* context)
{
    const nlmsghdr* header = nlmsg_hdr(message);
    static_cast<Exchange*>(context)->replies->append(
        QByteArray(reinterpret_cast<const char*>(header), static_cast<qsizetype>(header->nlmsg_len)));
    return NL_SKIP;
}

int finish(nl_msg*, void* context)
{
    static_cast<Exchange*>(context)->done = true;
    return NL_STOP;
}

int markInterrupted(nl_msg*, void* context)
{
    static_cast<Exchange*>(context)->interrupted = true;
    return NL_OK;
}

int keepKernelError(sockaddr_nl*, nlmsgerr* error, void* context)
{
    auto* exchange = static_cast<Exchange*>(context);
    exchange->kernelError = error->error;
    exchange->done = true;
    return NL_STOP;
}

int acceptAnySequence(nl_msg*, void*) { return NL_OK; }

int keepEvent(nl_msg* message, void* context)
{
    if (const auto event = parseEvent(message))
        static_cast<QList<Event>*>(context)->append(*event);
    return NL_SKIP;
}

bool putBssid(nl_msg* message, const QString& bssid)
{
    const QByteArray bytes = QByteArray::fromHex(bssid.toLatin1().replace(':', QByteArray()));
    return bytes.size() == 6 && nla_put(message, NL80211_ATTR_MAC, 6, bytes.constData()) == 0;
}

// A generic-netlink socket, or nullptr with the reason in error.
nl_sock* connectGenericNetlink(MaybeError& error)
{
    nl_sock* socket = nl_socket_alloc();
    if (socket == nullptr) {
        error = netlinkError(-NLE_NOMEM, QStringLiteral("Cannot open a netlink socket"));
        return nullptr;
    }
    if (const int result = genl_connect(socket); result < 0) {
        error = netlinkError(result, QStringLiteral("Cannot connect to generic netlink"));
        nl_socket_free(socket);
        return nullptr;
    }
    return socket;
}

} // namespace

PlatformError errorFromErrno(int errnoValue, const QString& what)
{
    PlatformError error;
    error.domain = QString::fromLatin1(errorDomain);
    error.code = errnoValue;
    error.description = what + QStringLiteral(": ") + qt_error_string(errnoValue);
    return error;
}

RequestSocket::RequestSocket()
{
    socket_ = connectGenericNetlink(openError_);
    if (socket_ == nullptr)
        return;
    nl_socket_enable_msg_peek(socket_);
    family_ = genl_ctrl_resolve(socket_, NL80211_GENL_NAME);
    if (family_ == -NLE_OBJ_NOTFOUND) {
        wirelessStackMissing_ = true;
        openError_ = missingStackError();
    } else if (family_ < 0) {
        openError_ = netlinkError(family_, QStringLiteral("Cannot find the nl80211 family"));
    }
}

RequestSocket::~RequestSocket()
{
    nl_socket_free(socket_);
}

MaybeError RequestSocket::requestOnce(std::uint8_t command, bool dump, const AttributeWriter& attributes,
                                      QList<QByteArray>& replies, bool& interrupted)
{
    nl_msg* message = nlmsg_alloc();
    if (message == nullptr)
        return netlinkError(-NLE_NOMEM, QStringLiteral("Cannot build an nl80211 request"));
    const bool built = genlmsg_put(message, NL_AUTO_PORT, NL_AUTO_SEQ, family_, 0, dump ? NLM_F_DUMP : 0,
                                   command, 0) != nullptr
                       && (!attributes || attributes(message));
    const int sent = built ? nl_send_auto(socket_, message) : -NLE_MSGSIZE;
    nlmsg_free(message);
    if (sent < 0)
        return netlinkError(sent, QStringLiteral("Cannot send an nl80211 request"));

    Exchange exchange;
    exchange.replies = &replies;
    nl_cb* callbacks = nl_cb_alloc(NL_CB_DEFAULT);
    if (callbacks == nullptr)
        return netlinkError(-NLE_NOMEM, QStringLiteral("Cannot receive nl80211 replies"));
    nl_cb_set(callbacks, NL_CB_VALID, NL_CB_CUSTOM, keepReply, &exchange);
    nl_cb_set(callbacks, NL_CB_FINISH, NL_CB_CUSTOM, finish, &exchange);
    nl_cb_set(callbacks, NL_CB_ACK, NL_CB_CUSTOM, finish, &exchange);
    nl_cb_set(callbacks, NL_CB_DUMP_INTR, NL_CB_CUSTOM, markInterrupted, &exchange);
    nl_cb_err(callbacks, NL_CB_CUSTOM, keepKernelError, &exchange);

    MaybeError failure;
    while (!exchange.done && !failure) {
        if (!waitForInput(nl_socket_get_fd(socket_), replyTimeout)) {
            failure = errorFromErrno(ETIMEDOUT, QStringLiteral("nl80211 did not answer"));
            break;
        }
        if (const int result = nl_recvmsgs(socket_, callbacks); result < 0 && result != -NLE_DUMP_INTR)
            failure = netlinkError(result, QStringLiteral("Cannot read nl80211 replies"));
    }
    nl_cb_put(callbacks);
    interrupted = exchange.interrupted;
    if (!failure && exchange.kernelError != 0)
        failure = errorFromErrno(-exchange.kernelError, QStringLiteral("nl80211 refused the request"));
    return failure;
}

MaybeError RequestSocket::request(std::uint8_t command, bool dump, const AttributeWriter& attributes,
                                  const MessageHandler& handler)
{
    if (openError_)
        return openError_;
    QList<QByteArray> replies;
    bool interrupted = true;
    for (int attempt = 0; attempt < maxDumpAttempts && interrupted; ++attempt) {
        replies.clear();
        if (auto error = requestOnce(command, dump, attributes, replies, interrupted))
            return error;
    }
    // A list that keeps changing under every pass is still the best picture there is.
    for (QByteArray& reply : replies) {
        nl_msg* message = nlmsg_convert(reinterpret_cast<nlmsghdr*>(reply.data()));
        if (message == nullptr)
            continue;
        handler(message);
        nlmsg_free(message);
    }
    return std::nullopt;
}

QList<InterfaceInfo> RequestSocket::interfaces()
{
    QList<InterfaceInfo> result;
    request(NL80211_CMD_GET_INTERFACE, true, {}, [&result](nl_msg* message) {
        if (auto info = parseInterface(message))
            result.append(*info);
    });
    return result;
}

QList<WiphyInfo> RequestSocket::wiphys()
{
    WiphyCollector collector;
    // Without the split request the kernel leaves out what no longer fits one message.
    request(
        NL80211_CMD_GET_WIPHY, true,
        [](nl_msg* message) { return nla_put_flag(message, NL80211_ATTR_SPLIT_WIPHY_DUMP) == 0; },
        [&collector](nl_msg* message) { collector.add(message); });
    return collector.wiphys();
}

QList<ScanEntry> RequestSocket::scanDump(int ifindex, MaybeError* error)
{
    QList<ScanEntry> result;
    auto failure = request(
        NL80211_CMD_GET_SCAN, true,
        [ifindex](nl_msg* message) {
            return nla_put_u32(message, NL80211_ATTR_IFINDEX, static_cast<std::uint32_t>(ifindex)) == 0;
        },
        [&result](nl_msg* message) {
            if (auto entry = parseScanEntry(message))
                result.append(*entry);
        });
    if (error != nullptr)
        *error = failure;
    return result;
}

std::optional<StationInfo> RequestSocket::station(int ifindex, const QString& bssid)
{
    std::optional<StationInfo> result;
    request(
        NL80211_CMD_GET_STATION, false,
        [ifindex, &bssid](nl_msg* message) {
            return nla_put_u32(message, NL80211_ATTR_IFINDEX, static_cast<std::uint32_t>(ifindex)) == 0
                   && putBssid(message, bssid);
        },
        [&result](nl_msg* message) {
            if (!result)
                result = parseStation(message);
        });
    return result;
}

QList<SurveyEntry> RequestSocket::survey(int ifindex)
{
    QList<SurveyEntry> result;
    request(
        NL80211_CMD_GET_SURVEY, true,
        [ifindex](nl_msg* message) {
            return nla_put_u32(message, NL80211_ATTR_IFINDEX, static_cast<std::uint32_t>(ifindex)) == 0;
        },
        [&result](nl_msg* message) {
            if (auto entry = parseSurvey(message))
                result.append(*entry);
        });
    return result;
}

std::optional<RegulatoryInfo> RequestSocket::regulatory(std::uint32_t wiphy)
{
    std::optional<RegulatoryInfo> result;
    request(
        NL80211_CMD_GET_REG, false,
        [wiphy](nl_msg* message) { return nla_put_u32(message, NL80211_ATTR_WIPHY, wiphy) == 0; },
        [&result](nl_msg* message) {
            if (!result)
                result = parseRegulatory(message);
        });
    return result;
}

MaybeError RequestSocket::triggerScan(int ifindex, const QList<QByteArray>& ssids)
{
    return request(
        NL80211_CMD_TRIGGER_SCAN, false,
        [ifindex, &ssids](nl_msg* message) {
            if (nla_put_u32(message, NL80211_ATTR_IFINDEX, static_cast<std::uint32_t>(ifindex)) != 0)
                return false;
            nlattr* list = nla_nest_start(message, NL80211_ATTR_SCAN_SSIDS);
            if (list == nullptr)
                return false;
            // An empty SSID is the wildcard probe; without any entry the scan would be passive.
            const QList<QByteArray> probes = ssids.isEmpty() ? QList<QByteArray>{QByteArray()} : ssids;
            for (qsizetype i = 0; i < probes.size(); ++i) {
                if (nla_put(message, static_cast<int>(i + 1), static_cast<int>(probes[i].size()),
                            probes[i].constData()) != 0)
                    return false;
            }
            return nla_nest_end(message, list) == 0;
        },
        [](nl_msg*) {});
}

EventSocket::EventSocket(const QStringList& groups)
{
    socket_ = connectGenericNetlink(openError_);
    if (socket_ == nullptr)
        return;
    for (const QString& group : groups) {
        const int id = genl_ctrl_resolve_grp(socket_, NL80211_GENL_NAME, group.toLatin1().constData());
        if (id == -NLE_OBJ_NOTFOUND) {
            openError_ = missingStackError();
            return;
        }
        const int joined = id < 0 ? id : nl_socket_add_membership(socket_, id);
        if (joined < 0) {
            openError_ = netlinkError(joined, QStringLiteral("Cannot listen to nl80211 events"));
            return;
        }
    }
    nl_socket_enable_msg_peek(socket_);
    nl_socket_set_nonblocking(socket_);
    // Scan bursts on busy wiphys produce many events at once; a small buffer would drop them.
    nl_socket_set_buffer_size(socket_, 1 << 20, 0);
}

EventSocket::~EventSocket()
{
    nl_socket_free(socket_);
}

int EventSocket::fileDescriptor() const
{
    return openError_ ? -1 : nl_socket_get_fd(socket_);
}

bool EventSocket::drain(QList<Event>& events)
{
    if (openError_)
        return true;
    nl_cb* callbacks = nl_cb_alloc(NL_CB_DEFAULT);
    if (callbacks == nullptr)
        return false;
    nl_cb_set(callbacks, NL_CB_VALID, NL_CB_CUSTOM, keepEvent, &events);
    // Multicast events carry sequence number 0.
    nl_cb_set(callbacks, NL_CB_SEQ_CHECK, NL_CB_CUSTOM, acceptAnySequence, nullptr);
    bool complete = true;
    for (;;) {
        const int result = nl_recvmsgs_report(socket_, callbacks);
        if (result > 0)
            continue;
        complete = result == 0 || result == -NLE_AGAIN;
        break;
    }
    nl_cb_put(callbacks);
    return complete;
}

bool EventSocket::waitReadable(std::chrono::milliseconds timeout) const
{
    return !openError_ && waitForInput(nl_socket_get_fd(socket_), timeout);
}

} // namespace platform::nl80211
