#include "sensor/udp_line_socket.h"

#include <QtGlobal>

#include <arpa/inet.h>
#include <array>
#include <linux/sock_diag.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace sensor {
namespace {

// A datagram with bytes outside ASCII is not a reading line; it is dropped, not guessed at.
std::optional<QString> asciiLine(const char* bytes, qsizetype size)
{
    for (qsizetype i = 0; i < size; ++i) {
        if (static_cast<unsigned char>(bytes[i]) > 0x7F)
            return std::nullopt;
    }
    return QString::fromLatin1(bytes, size);
}

constexpr int largestDatagram = 65536;

} // namespace

UdpLineSocket::UdpLineSocket(QObject* parent) : QObject(parent), buffer_(largestDatagram, Qt::Uninitialized) {}

UdpLineSocket::~UdpLineSocket() { close(); }

std::optional<QString> UdpLineSocket::bindToPort(quint16 port)
{
    close();
    // No SO_REUSEADDR: a port another socket holds must fail here, not share the datagrams.
    fd_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd_ < 0)
        return qt_error_string(errno);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(port);
    if (::bind(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const QString error = qt_error_string(errno);
        close();
        return error;
    }
    // The forced size passes net.core.rmem_max where the process may; otherwise the kernel
    // grants what that limit allows.
    const int size = receiveBufferBytes;
    if (::setsockopt(fd_, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        ::setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    lastKernelCount_ = 0;
    dropped_ = 0;
    notifier_ = new QSocketNotifier(fd_, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &UdpLineSocket::readBatch);
    return std::nullopt;
}

void UdpLineSocket::close()
{
    // A line handler may close the socket from inside the notifier's own signal.
    if (notifier_) {
        notifier_->setEnabled(false);
        notifier_->deleteLater();
        notifier_.clear();
    }
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
}

quint16 UdpLineSocket::localPort() const
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (fd_ < 0 || ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return 0;
    return ntohs(address.sin_port);
}

int UdpLineSocket::receiveBufferSize() const
{
    int size = 0;
    socklen_t length = sizeof size;
    if (fd_ < 0 || ::getsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &size, &length) != 0)
        return 0;
    return size;
}

quint64 UdpLineSocket::droppedDatagrams()
{
    refreshDrops();
    return dropped_;
}

void UdpLineSocket::refreshDrops()
{
    // The socket's own drop counter, read live: SO_RXQ_OVFL would only tell it with the next
    // datagram that gets queued, which a listener that stalled and then stopped never sees.
    std::array<quint32, SK_MEMINFO_VARS> info{};
    socklen_t length = sizeof info;
    if (fd_ < 0 || ::getsockopt(fd_, SOL_SOCKET, SO_MEMINFO, info.data(), &length) != 0 ||
        length <= SK_MEMINFO_DROPS * sizeof(quint32))
        return;
    // The kernel's counter is 32 bits and wraps; unsigned subtraction follows it.
    dropped_ += static_cast<quint32>(info[SK_MEMINFO_DROPS] - lastKernelCount_);
    lastKernelCount_ = info[SK_MEMINFO_DROPS];
}

void UdpLineSocket::readBatch()
{
    const quint64 droppedBefore = dropped_;
    for (int read = 0; read < batchSize && fd_ >= 0; ++read) {
        const ssize_t size = ::recv(fd_, buffer_.data(), static_cast<std::size_t>(buffer_.size()), 0);
        if (size < 0) {
            if (errno == EINTR)
                continue;
            break;  // EAGAIN: the queue is empty; anything else shows again on the next turn
        }
        if (const auto line = asciiLine(buffer_.constData(), size))
            emit lineReceived(*line);
    }
    refreshDrops();
    if (dropped_ != droppedBefore)
        emit datagramsDropped(dropped_);
}

} // namespace sensor
