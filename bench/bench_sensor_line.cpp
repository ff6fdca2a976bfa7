// The per-line cost of a sensor reading on its way to the log: one line split and its time
// stamp turned into the log's "MM-dd-YYYY hh:mm:ss.SSSS", and that date text alone. The
// listener does this for every line on the GUI thread, 20,000 lines a second at full rate.
#include "scan/scanner_utils.h"
#include "sensor/sensor_line.h"

#include <QDateTime>

#include <benchmark/benchmark.h>

namespace {

void BM_ParseSensorLine(benchmark::State& state)
{
    qint64 milliseconds = 1'750'000'000'000;
    for (auto _ : state) {
        milliseconds += 50;
        const QString line = QString::number(milliseconds) + QStringLiteral(",3,0.125,-9.81,0.5");
        benchmark::DoNotOptimize(sensor::parseSensorLine(line));
    }
}
BENCHMARK(BM_ParseSensorLine);

void BM_FormatDate(benchmark::State& state)
{
    QDateTime date = QDateTime::fromMSecsSinceEpoch(1'750'000'000'000);
    for (auto _ : state) {
        date = date.addMSecs(50);
        benchmark::DoNotOptimize(scan::ScannerUtils::formatDate(QStringLiteral("MM-dd-YYYY hh:mm:ss.SSSS"), date));
    }
}
BENCHMARK(BM_FormatDate);

} // namespace
