#include "sensor/sensor_log_file.h"

#include "scan/scanner_utils.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <unistd.h>

namespace sensor {
namespace {

// Temporary file and rename: a kill leaves either the old file or the complete new one.
std::optional<QString> writeWhole(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    if (file.write(bytes) != bytes.size()) {
        const QString error = file.errorString();
        file.cancelWriting();
        return error;
    }
    if (!file.commit())
        return file.errorString();
    return std::nullopt;
}

// An append only writes past the old end of the file (O_APPEND, no truncation, no rewrite in
// place), so nothing that an earlier save committed can be torn by a kill. The new lines go out
// in one write() and are synced before the save counts as done. Linux cuts such a write short
// only when the process is killed while the write crosses a page boundary; the next save sees
// that the file is not the length it committed and rewrites it whole. Copying the file to a
// temporary and renaming it would close even that window, but at the price of writing the
// whole log on every save, which is what this file exists to avoid.
std::optional<QString> appendTail(const QString& path, const QByteArray& bytes, qsizetype committedBytes)
{
    const QByteArray nativePath = QFile::encodeName(path);
    const int fd = ::open(nativePath.constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd < 0)
        return qt_error_string(errno);
    const char* data = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            QString error = qt_error_string(written < 0 ? errno : ENOSPC);
            // A disk that filled up half-way must not leave half a line behind.
            if (::ftruncate(fd, static_cast<off_t>(committedBytes)) != 0)
                error += QStringLiteral(" (the partial lines stay until the next save: %1)").arg(qt_error_string(errno));
            ::close(fd);
            return error;
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    const bool synced = ::fdatasync(fd) == 0;
    const int syncError = errno;
    ::close(fd);
    if (!synced)
        return qt_error_string(syncError);
    return std::nullopt;
}

} // namespace

QString SensorLogFile::logFileNameForLaunch(const QDateTime& launchTime)
{
    return QStringLiteral("/skyvane_%1.csv")
        .arg(ScannerUtils::formatDate(QStringLiteral("MM_dd_YYYY_hh_mm_ss"), launchTime));
}

QString SensorLogFile::folderForSetting(const QVariant& setting)
{
    QString text = setting.toString();
    if (text.isEmpty())
        return {};
    // A file URL naming the local host keeps the host in QUrl, which would read it as a network
    // share; dropping it gives the same folder as "file:///".
    text.replace(QStringLiteral("file://localhost"), QStringLiteral("file://"));
    if (!text.startsWith(QLatin1String("file:")))
        return text;
    const QUrl url(text);
    return url.isLocalFile() ? url.toLocalFile() : text;
}

std::chrono::seconds SensorLogFile::savePeriodForSetting(const QVariant& setting)
{
    bool ok = false;
    const double seconds = setting.toDouble(&ok);
    if (!ok || !std::isfinite(seconds) || seconds < 1.0 || seconds > 86400.0 * 365)
        return defaultSavePeriod;
    return std::chrono::seconds(static_cast<long long>(seconds));
}

SensorLogFile::SensorLogFile(const SensorLog& log, QString logFileName)
    : log_(log), logFileName_(std::move(logFileName))
{
}

SensorLogFile::SaveReport SensorLogFile::appendToLogFile(const QVariant& folderSetting)
{
    const QString folder = folderForSetting(folderSetting);
    if (folder.isEmpty())
        return {QLatin1String(selectDirectoryMessage), {}};
    std::lock_guard lock(mutex_);
    return save(QDir::cleanPath(folder + logFileName_));
}

SensorLogFile::SaveReport SensorLogFile::save(const QString& path)
{
    const QFileInfo file(path);
    if (!file.exists()) {
        SaveReport report{{}, {QStringLiteral("creating file at path %1").arg(path)}};
        const SensorLog::Changes changes = log_.changesSince(std::nullopt, 0);
        if (writeWhole(path, changes.bytes)) {
            saved_.reset();
            report.console.append(QLatin1String(unableToCreateMessage));
        } else {
            remember(path, changes);
        }
        return report;
    }

    const bool fileIsAsSaved = saved_ && saved_->path == path && file.size() == saved_->bytes;
    const SensorLog::Changes changes = fileIsAsSaved ? log_.changesSince(saved_->generation, saved_->bytes)
                                                     : log_.changesSince(std::nullopt, 0);
    std::optional<QString> error;
    if (changes.rewrite)
        error = writeWhole(path, changes.bytes);
    else if (!changes.bytes.isEmpty())
        error = appendTail(path, changes.bytes, saved_->bytes);
    if (error) {
        saved_.reset();
        return {*error, {QStringLiteral("error is %1").arg(*error)}};
    }
    remember(path, changes);
    return {};
}

void SensorLogFile::remember(const QString& path, const SensorLog::Changes& changes)
{
    saved_ = Saved{path, changes.generation, changes.endBytes};
}

} // namespace sensor
