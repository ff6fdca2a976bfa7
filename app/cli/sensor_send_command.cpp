#include "app/cli/sensor_send_command.h"

#include "app/cli/cli_arguments.h"
#include "app/cli/phone_readings.h"

#include <QDateTime>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace app::cli {
namespace {

bool parseAddress(const QString& text, SensorSendRequest& request)
{
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return false;
    QString host = text.left(colon);
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        host = host.mid(1, host.size() - 2);
    bool ok = false;
    const uint port = text.mid(colon + 1).toUInt(&ok);
    if (!ok || port == 0 || port > 65535 || host.isEmpty())
        return false;
    request.host = host;
    request.port = static_cast<quint16>(port);
    return true;
}

// One connected socket to the listener; closes itself.
class LineSender {
public:
    LineSender(SensorTransport transport, int fd) : transport_(transport), fd_(fd) {}
    LineSender(const LineSender&) = delete;
    LineSender& operator=(const LineSender&) = delete;
    ~LineSender() { ::close(fd_); }

    std::optional<QString> send(const QByteArray& line)
    {
        if (transport_ == SensorTransport::Udp) {
            // Nobody listening yet is no reason for a phone to stop sending.
            if (::send(fd_, line.constData(), static_cast<std::size_t>(line.size()), MSG_NOSIGNAL) < 0 &&
                errno != ECONNREFUSED)
                return qt_error_string(errno);
            return std::nullopt;
        }
        const QByteArray framed = line + "\r\n";
        for (qsizetype sent = 0; sent < framed.size();) {
            const ssize_t n = ::send(fd_, framed.constData() + sent, static_cast<std::size_t>(framed.size() - sent),
                                     MSG_NOSIGNAL);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                return qt_error_string(errno);
            sent += n;
        }
        drainEcho();
        return std::nullopt;
    }

    // Over TCP the listener reads everything sent before it sees the end of the stream; closing
    // with its echo still unread would reset the connection and could cost the last lines.
    void finish()
    {
        if (transport_ != SensorTransport::Tcp)
            return;
        ::shutdown(fd_, SHUT_WR);
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (std::chrono::steady_clock::now() < giveUp) {
            pollfd readable{fd_, POLLIN, 0};
            if (::poll(&readable, 1, 100) < 0 && errno != EINTR)
                return;
            char buffer[4096];
            const ssize_t n = ::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT);
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR))
                return;
        }
    }

private:
    // The listener echoes every line; reading it keeps its buffers from filling up.
    void drainEcho()
    {
        char buffer[4096];
        while (::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT) > 0) {
        }
    }

    SensorTransport transport_;
    int fd_;
};

std::unique_ptr<LineSender> connectTo(const SensorSendRequest& request, QString* error)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = request.transport == SensorTransport::Udp ? SOCK_DGRAM : SOCK_STREAM;
    addrinfo* found = nullptr;
    const QByteArray host = request.host.toUtf8();
    const QByteArray port = QByteArray::number(request.port);
    if (const int status = ::getaddrinfo(host.constData(), port.constData(), &hints, &found); status != 0) {
        *error = QStringLiteral("cannot resolve %1: %2").arg(request.host, QString::fromUtf8(::gai_strerror(status)));
        return nullptr;
    }
    // The listener binds IPv4 only, so IPv4 addresses are tried first.
    std::vector<addrinfo*> candidates;
    for (addrinfo* entry = found; entry; entry = entry->ai_next)
        candidates.push_back(entry);
    std::stable_partition(candidates.begin(), candidates.end(), [](const addrinfo* a) { return a->ai_family == AF_INET; });
    std::unique_ptr<LineSender> sender;
    *error = QStringLiteral("no address for %1").arg(request.host);
    for (const addrinfo* entry : candidates) {
        const int fd = ::socket(entry->ai_family, entry->ai_socktype | SOCK_CLOEXEC, entry->ai_protocol);
        if (fd < 0) {
            *error = qt_error_string(errno);
            continue;
        }
        if (::connect(fd, entry->ai_addr, entry->ai_addrlen) == 0) {
            sender = std::make_unique<LineSender>(request.transport, fd);
            break;
        }
        *error = QStringLiteral("cannot connect to %1:%2: %3").arg(request.host).arg(request.port).arg(qt_error_string(errno));
        ::close(fd);
    }
    ::freeaddrinfo(found);
    return sender;
}

} // namespace

std::optional<SensorSendRequest> parseSensorSendArguments(const QStringList& arguments, QString* error)
{
    SensorSendRequest request;
    bool addressGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (matchesOption(argument, QStringLiteral("--udp")) || matchesOption(argument, QStringLiteral("--tcp"))) {
            const QString name = argument.left(5);
            const auto address = optionValue(arguments, i, name, error);
            if (!address)
                return std::nullopt;
            if (addressGiven || !parseAddress(*address, request)) {
                *error = addressGiven ? QStringLiteral("give one of --udp and --tcp")
                                      : QStringLiteral("%1 needs HOST:PORT, not \"%2\"").arg(name, *address);
                return std::nullopt;
            }
            request.transport = name == u"--tcp" ? SensorTransport::Tcp : SensorTransport::Udp;
            addressGiven = true;
        } else if (matchesOption(argument, QStringLiteral("--rate"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--rate"), error);
            bool ok = false;
            const double rate = text ? text->toDouble(&ok) : 0.0;
            if (!ok || !std::isfinite(rate) || rate <= 0.0 || rate > 1.0e6) {
                if (text)
                    *error = QStringLiteral("--rate needs lines per second, not \"%1\"").arg(*text);
                return std::nullopt;
            }
            request.linesPerSecond = rate;
        } else if (matchesOption(argument, QStringLiteral("--count"))) {
            const auto text = optionValue(arguments, i, QStringLiteral("--count"), error);
            const auto count = text ? positiveNumber(*text, QStringLiteral("--count"), error) : std::nullopt;
            if (!count)
                return std::nullopt;
            request.count = *count;
        } else if (matchesOption(argument, QStringLiteral("--gpx"))) {
            const auto file = optionValue(arguments, i, QStringLiteral("--gpx"), error);
            if (!file)
                return std::nullopt;
            request.gpxFile = *file;
        } else {
            *error = QStringLiteral("unknown argument \"%1\"").arg(argument);
            return std::nullopt;
        }
    }
    if (!addressGiven) {
        *error = QStringLiteral("give --udp HOST:PORT or --tcp HOST:PORT");
        return std::nullopt;
    }
    return request;
}

QString sensorSendUsage()
{
    return QStringLiteral(
        "  sensor-send --udp|--tcp HOST:PORT [--rate LINES_PER_SECOND] [--count N] [--gpx FILE]\n"
        "                        play phone readings to a listener: GPS fixes of a synthesised walk or\n"
        "                        of a GPX track, with compass, accelerometer and gyroscope lines (4/s;\n"
        "                        the track once, the walk until Ctrl-C)\n");
}

int runSensorSend(const SensorSendRequest& request, std::FILE* out, std::FILE* err)
{
    QString error;
    QList<GpxPoint> track;
    if (!request.gpxFile.isEmpty()) {
        auto read = readGpxTrack(request.gpxFile, &error);
        if (!read) {
            writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(error));
            return 1;
        }
        track = std::move(*read);
    }
    PhoneReadings readings(std::move(track));
    const std::optional<qint64> count = request.count ? request.count : readings.lineCount();

    const std::unique_ptr<LineSender> sender = connectTo(request, &error);
    if (!sender) {
        writeText(err, QStringLiteral("skyvane-cli: %1\n").arg(error));
        return 1;
    }
    const QString transport = request.transport == SensorTransport::Tcp ? QStringLiteral("TCP") : QStringLiteral("UDP");
    // A round of four lines is one GPS fix, so the walk moves that much time per fix.
    const double stepSeconds = 4.0 / request.linesPerSecond;
    const auto start = std::chrono::steady_clock::now();
    qint64 sent = 0;
    for (; !count || sent < *count; ++sent) {
        const auto due = start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                     std::chrono::duration<double>(static_cast<double>(sent) / request.linesPerSecond));
        std::this_thread::sleep_until(due);
        if (const auto failed = sender->send(readings.nextLine(QDateTime::currentMSecsSinceEpoch(), stepSeconds))) {
            writeText(err, QStringLiteral("skyvane-cli: sending to %1:%2 failed after %3 lines: %4\n")
                           .arg(request.host).arg(request.port).arg(sent).arg(*failed));
            return 1;
        }
    }
    sender->finish();
    writeText(out, QStringLiteral("sent %1 lines to %2:%3 over %4\n").arg(sent).arg(request.host).arg(request.port).arg(transport));
    return 0;
}

} // namespace app::cli
