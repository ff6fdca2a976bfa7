#include "graphs/network_details_model.h"

#include "core/user_settings.h"
#include "scanning/wifi_scan_test.h"

#include <cstdlib>

namespace graphs {

namespace {

const ColourCode green{0.0, 1.0, 0.0, 1.0};
const ColourCode red{1.0, 0.0, 0.0, 1.0};
const ColourCode yellow{1.0, 1.0, 0.0, 1.0};

Gradient fadeOut(const ColourCode& colour)
{
    return Gradient{ColourCode(colour.red, colour.green, colour.blue, 0.8), ColourCode(0.0, 0.0, 0.0, 0.0), -90.0};
}

const scan::ScanedResultInfo* newestOf(const scanning::WiFiScanTest& test, const QString& bssid)
{
    const auto it = test.scanedResults.constFind(bssid);
    return it == test.scanedResults.cend() || it->isEmpty() ? nullptr : &it->first();
}

} // namespace

NetworkDetailsModel::NetworkDetailsModel(const core::UserSettings& settings, GraphTheme theme, QObject* parent)
    : QObject(parent), settings_(settings), theme_(theme)
{
    gridLines_ = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
}

void NetworkDetailsModel::highlightGraph(const QString& bssid, const scanning::WiFiScanTest& test)
{
    if (bssid == visibleBSSID_)
        return;
    visibleBSSID_ = bssid;
    sampledData_.clear();
    networkDetails_.reset();
    if (const scan::ScanedResultInfo* newest = newestOf(test, bssid))
        networkDetails_ = *newest;
    emit changed();
}

void NetworkDetailsModel::updateGraphDataPoints(const QList<scan::ScanedResultInfo>& history, const QString& bssid)
{
    if (history.isEmpty() || visibleBSSID_.isEmpty() || bssid != visibleBSSID_)
        return;
    addSample(history.first());
}

void NetworkDetailsModel::updateGraphDataPointsForConnectedSSID(const QString& bssid, const scanning::WiFiScanTest& test)
{
    if (bssid.isEmpty())
        return;
    if (visibleBSSID_ != bssid)
        highlightGraph(bssid, test);
    if (const scan::ScanedResultInfo* newest = newestOf(test, visibleBSSID_))
        addSample(*newest);
}

void NetworkDetailsModel::addSample(const scan::ScanedResultInfo& newest)
{
    while (sampledData_.size() >= maxSamples)
        sampledData_.removeLast();
    sampledData_.prepend(newest);
    networkDetails_ = newest;
    emit changed();
    emit annotationMoved(maxSamples - 1);
}

void NetworkDetailsModel::resetGraph()
{
    networkDetails_.reset();
    emit changed();
}

void NetworkDetailsModel::refreshSettings()
{
    const bool on = core::settingIsOn(settings_.value(QLatin1String(gridLinesSettingKey)));
    if (on == gridLines_)
        return;
    gridLines_ = on;
    emit changed();
}

DetailsTexts NetworkDetailsModel::texts() const
{
    if (!networkDetails_)
        return {};
    const scan::ScanedResultInfo& record = *networkDetails_;
    const QString band = QString::number(record.channelBond);
    DetailsTexts texts;
    if (record.channelOffset == 1)
        texts.channel = QStringLiteral("%1,+%2 (%3 GHz) ").arg(record.originalChannel).arg(record.channelOffset).arg(band);
    else if (record.channelOffset != 0)
        texts.channel = QStringLiteral("%1,%2 (%3 GHz) ").arg(record.originalChannel).arg(record.channelOffset).arg(band);
    else
        texts.channel = QStringLiteral("%1 (%2 GHz) ").arg(record.originalChannel).arg(band);
    texts.dataRates = QStringLiteral("%1 Mbps").arg(record.supportedDataRates.value_or(QStringList()).join(QStringLiteral(", ")));
    texts.snr = QStringLiteral("%1 dB").arg(record.singnalToNoise);
    texts.streams = QString::number(record.numberOfStreams);
    return texts;
}

QString NetworkDetailsModel::samplesHeader() const
{
    return QStringLiteral("SSID: %1").arg(networkDetails_ ? networkDetails_->ssid : QString());
}

GraphLayout NetworkDetailsModel::layout() const
{
    GraphLayout layout;
    layout.xRange = ValueRange{120.0, -120.0};
    layout.plotAreaPadding = Padding{15.0, 5.0, 40.0, 45.0};
    layout.xAxis = AxisSpec{QStringLiteral("Seconds"), 15.0, -2.0, 15.0, {}};
    layout.yAxis = AxisSpec{QStringLiteral("RSSI (dBm)"), 23.0, 5.0, 15.0, {}};
    layout.theme = theme_;
    layout.gridLines = gridLines_;
    return layout;
}

QList<QPointF> NetworkDetailsModel::points(int scan::ScanedResultInfo::*field) const
{
    QList<QPointF> points;
    if (sampledData_.isEmpty())
        return points;
    const QDateTime newest = sampledData_.first().lastSeen;
    for (const scan::ScanedResultInfo& sample : sampledData_)
        points.append(QPointF(static_cast<double>(std::llabs(sample.lastSeen.secsTo(newest))), sample.*field));
    return points;
}

QList<DetailsLine> NetworkDetailsModel::lines() const
{
    DetailsLine signal;
    signal.identifier = QLatin1String(signalPlotId);
    signal.lineColour = green;
    signal.symbol = PointSymbol{SymbolShape::Ellipse, 4.0, 4.0, green, green};
    signal.areaFill = fadeOut(green);
    signal.points = points(&scan::ScanedResultInfo::rssi);

    DetailsLine noise;
    noise.identifier = QLatin1String(noisePlotId);
    noise.lineColour = red;
    noise.symbol = PointSymbol{SymbolShape::Ellipse, 4.0, 4.0, yellow, yellow};
    noise.areaFill = fadeOut(red);
    noise.points = points(&scan::ScanedResultInfo::noise);
    return {signal, noise};
}

std::optional<QPointF> NetworkDetailsModel::signalToNoisePoint() const
{
    if (sampledData_.isEmpty())
        return std::nullopt;
    return QPointF(0.0, sampledData_.first().singnalToNoise);
}

} // namespace graphs
