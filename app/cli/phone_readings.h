#pragma once

#include "app/cli/gpx_track.h"

#include <QByteArray>
#include <QList>

#include <optional>

// The reading lines a companion phone application sends, in rounds of four: a GPS fix, then a
// compass, an accelerometer and a gyroscope reading. The fixes follow a GPX track, or a
// synthesised walk when there is none.
namespace app::cli {

class PhoneReadings {
public:
    // An empty track gives the synthesised walk.
    explicit PhoneReadings(QList<GpxPoint> track = {});

    // Lines in one pass of the track; nullopt for the walk, which never ends.
    std::optional<qint64> lineCount() const;

    // The next line without its terminator. nowMs stands in for a fix without a time of its
    // own; stepSeconds is how far the walk moves between two fixes.
    QByteArray nextLine(qint64 nowMs, double stepSeconds);

private:
    QByteArray gpsLine(qint64 nowMs, double stepSeconds);

    QList<GpxPoint> track_;
    qint64 lineIndex_ = 0;
    qint64 roundTimeMs_ = 0;
    double latitude_ = 52.516275;
    double longitude_ = 13.377704;
    double altitude_ = 34.0;
    double headingDegrees_ = 90.0;
};

} // namespace app::cli
