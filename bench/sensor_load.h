#pragma once

#include <QByteArray>
#include <QString>

// A phone stand-in for the sensor listener benchmarks: GPS lines at a fixed rate over a real
// loopback socket, and a check of the saved file for lost or reordered lines.
namespace bench {

struct Load {
    double linesPerSecond = 20000.0;
    double seconds = 10.0;
    qint64 lines() const { return static_cast<qint64>(linesPerSecond * seconds); }
};

// The sequence number rides in the altitude, which the row keeps, so order and gaps show in the file.
QByteArray gpsLine(qint64 sequence);

// Sends the load from the calling thread; returns the lines sent.
qint64 sendLoad(bool tcp, quint16 port, const Load& load);

struct FileCheck {
    qint64 rows = 0;
    qint64 outOfOrder = 0;
    qint64 firstMissing = -1;
};

FileCheck checkFile(const QString& path, qint64 sent);

} // namespace bench
