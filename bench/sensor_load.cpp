#include "bench/sensor_load.h"

#include <QDateTime>
#include <QFile>
#include <QList>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace bench {

QByteArray gpsLine(qint64 sequence)
{
    return QByteArray::number(QDateTime::currentMSecsSinceEpoch()) + ",1,52.5162750,13.3777040," +
           QByteArray::number(sequence) + ",5.0,8.0";
}

qint64 sendLoad(bool tcp, quint16 port, const Load& load)
{
    const int fd = ::socket(AF_INET, (tcp ? SOCK_STREAM : SOCK_DGRAM) | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd < 0 || ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        std::perror("connect");
        return 0;
    }
    char echo[65536];
    const auto drainEcho = [&] {
        while (tcp && ::recv(fd, echo, sizeof echo, MSG_DONTWAIT) > 0) {
        }
    };
    const auto start = std::chrono::steady_clock::now();
    qint64 sent = 0;
    for (; sent < load.lines(); ++sent) {
        std::this_thread::sleep_until(start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                  std::chrono::duration<double>(static_cast<double>(sent) / load.linesPerSecond)));
        const QByteArray line = tcp ? gpsLine(sent) + "\r\n" : gpsLine(sent);
        for (qsizetype done = 0; done < line.size();) {
            const ssize_t n = ::send(fd, line.constData() + done, static_cast<std::size_t>(line.size() - done), MSG_NOSIGNAL);
            if (n < 0 && errno != EINTR) {
                std::perror("send");
                ::close(fd);
                return sent;
            }
            done += std::max<ssize_t>(n, 0);
        }
        if (sent % 64 == 0)
            drainEcho();
    }
    if (tcp) {
        // Wait for the listener to read everything before closing, or a reset could cost lines.
        ::shutdown(fd, SHUT_WR);
        for (pollfd readable{fd, POLLIN, 0}; ::poll(&readable, 1, 10000) > 0;) {
            if (::recv(fd, echo, sizeof echo, 0) <= 0)
                break;
        }
    }
    ::close(fd);
    return sent;
}

FileCheck checkFile(const QString& path, qint64 sent)
{
    QFile file(path);
    FileCheck check;
    if (!file.open(QIODevice::ReadOnly))
        return check;
    qint64 previous = -1;
    for (const QByteArray& row : file.readAll().split('\n')) {
        const QList<QByteArray> fields = row.split(',');
        if (fields.size() != 9 || fields[0] == "TIME")
            continue;
        const qint64 sequence = static_cast<qint64>(fields[8].toDouble());
        if (sequence <= previous)
            ++check.outOfOrder;
        else if (sequence != previous + 1 && check.firstMissing < 0)
            check.firstMissing = previous + 1;
        previous = sequence;
        ++check.rows;
    }
    if (check.firstMissing < 0 && previous + 1 < sent)
        check.firstMissing = previous + 1;
    return check;
}

} // namespace bench
