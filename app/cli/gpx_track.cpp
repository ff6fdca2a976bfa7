#include "app/cli/gpx_track.h"

#include <QFile>
#include <QXmlStreamReader>

#include <cmath>

namespace app::cli {
namespace {

std::optional<double> number(QStringView text, double limit)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value) || std::abs(value) > limit)
        return std::nullopt;
    return value;
}

// Reads one <trkpt> whose start tag the reader stands on; leaves it on the end tag.
std::optional<GpxPoint> readPoint(QXmlStreamReader& xml, QString* error)
{
    const qint64 line = xml.lineNumber();
    const auto fail = [&](const QString& what) {
        *error = QStringLiteral("track point on line %1: %2").arg(line).arg(what);
        return std::nullopt;
    };
    const auto latitude = number(xml.attributes().value(QLatin1String("lat")), 90.0);
    const auto longitude = number(xml.attributes().value(QLatin1String("lon")), 180.0);
    if (!latitude || !longitude)
        return fail(QStringLiteral("needs lat between -90 and 90 and lon between -180 and 180"));
    GpxPoint point{*latitude, *longitude, 0.0, {}};
    while (xml.readNextStartElement()) {
        if (xml.name() == u"ele") {
            const QString text = xml.readElementText();
            const auto elevation = number(text, 1.0e6);
            if (!elevation)
                return fail(QStringLiteral("elevation \"%1\" is not a number").arg(text));
            point.elevation = *elevation;
        } else if (xml.name() == u"time") {
            const QString text = xml.readElementText().trimmed();
            point.time = QDateTime::fromString(text, Qt::ISODateWithMs);
            if (!point.time.isValid())
                return fail(QStringLiteral("time \"%1\" is not an ISO 8601 time").arg(text));
        } else {
            xml.skipCurrentElement();
        }
    }
    return point;
}

} // namespace

std::optional<QList<GpxPoint>> readGpxTrack(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    auto track = readGpxTrack(file, error);
    if (!track)
        *error = QStringLiteral("%1: %2").arg(path, *error);
    return track;
}

std::optional<QList<GpxPoint>> readGpxTrack(QIODevice& device, QString* error)
{
    QXmlStreamReader xml(&device);
    if (!xml.readNextStartElement() || xml.name() != u"gpx") {
        *error = QStringLiteral("not a GPX file (%1)")
                     .arg(xml.hasError() ? xml.errorString() : QStringLiteral("no <gpx> root element"));
        return std::nullopt;
    }
    QList<GpxPoint> track;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"trkpt") {
            auto point = readPoint(xml, error);
            if (!point)
                return std::nullopt;
            track.append(*point);
        }
    }
    if (xml.hasError()) {
        *error = QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString());
        return std::nullopt;
    }
    if (track.isEmpty()) {
        *error = QStringLiteral("no track point (<trkpt>) in the file");
        return std::nullopt;
    }
    return track;
}

} // namespace app::cli
