#include "sensor/sensor_log_file.h"

#include "scan/scanner_utils.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sensor {
namespace {

QString systemReason(int error) { return qt_error_string(error); }

// Writes all bytes; the errno of the failure otherwise. A write that takes nothing means the
// disk is full.
std::optional<int> writeAll(int fd, const QByteArray& bytes)
{
    const char* data = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : ENOSPC;
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    if (::fdatasync(fd) != 0)
        return errno;
    return std::nullopt;
}

// Creates the file only if no file has the name (O_EXCL), and removes it again when its content
// cannot be written, so a failed save leaves nothing behind. The errno of the failure otherwise.
std::optional<int> writeNew(const QString& path, const QByteArray& bytes)
{
    const QByteArray nativePath = QFile::encodeName(path);
    const int fd = ::open(nativePath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return errno;
    std::optional<int> error = writeAll(fd, bytes);
    if (::close(fd) != 0 && !error)
        error = errno;
    if (error)
        ::unlink(nativePath.constData());
    return error;
}

// Temporary file and rename over a file this run created: a kill leaves either the old file or
// the complete new one. The file keeps its permissions.
std::optional<int> writeWhole(const QString& path, const QByteArray& bytes)
{
    const QByteArray nativePath = QFile::encodeName(path);
    QByteArray temporary = nativePath + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return errno;
    struct stat old {};
    if (::stat(nativePath.constData(), &old) == 0)
        ::fchmod(fd, old.st_mode & 07777);
    std::optional<int> error = writeAll(fd, bytes);
    if (::close(fd) != 0 && !error)
        error = errno;
    if (!error && ::rename(temporary.constData(), nativePath.constData()) != 0)
        error = errno;
    if (error)
        ::unlink(temporary.constData());
    return error;
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
        return systemReason(errno);
    if (const std::optional<int> error = writeAll(fd, bytes)) {
        QString reason = systemReason(*error);
        // A disk that filled up half-way must not leave half a line behind.
        if (::ftruncate(fd, static_cast<off_t>(committedBytes)) != 0)
            reason += QStringLiteral(" (the partial lines stay until the next save: %1)").arg(systemReason(errno));
        ::close(fd);
        return reason;
    }
    if (::close(fd) != 0)
        return systemReason(errno);
    return std::nullopt;
}

} // namespace

QString SensorLogFile::logFileNameForLaunch(const QDateTime& launchTime)
{
    return QStringLiteral("/skyvane_%1.csv")
        .arg(scan::ScannerUtils::formatDate(QStringLiteral("MM_dd_YYYY_hh_mm_ss"), launchTime));
}

QString SensorLogFile::numberedFileName(const QString& logFileName, int attempt)
{
    if (attempt <= 1)
        return logFileName;
    QString name = logFileName;
    const qsizetype extension = name.lastIndexOf(QLatin1String(".csv"));
    return name.insert(extension < 0 ? name.size() : extension, QStringLiteral("-%1").arg(attempt));
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
    if (!ok || !std::isfinite(seconds) || seconds < 1.0 || seconds > static_cast<double>(longestSavePeriod.count()))
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
    const QString cleanFolder = QDir::cleanPath(folder);
    const auto created = created_.find(cleanFolder);
    if (created != created_.end() && QFileInfo::exists(created->second))
        return update(created->second);
    return create(cleanFolder);
}

QString SensorLogFile::savedPath()
{
    std::lock_guard lock(mutex_);
    return saved_ ? saved_->path : QString();
}

qsizetype SensorLogFile::unsavedBytes()
{
    std::lock_guard lock(mutex_);
    const SensorLog::Changes changes = saved_ ? log_.changesSince(saved_->generation, saved_->bytes)
                                              : log_.changesSince(std::nullopt, 0);
    return changes.bytes.size();
}

SensorLogFile::SaveReport SensorLogFile::create(const QString& folder)
{
    const SensorLog::Changes changes = log_.changesSince(std::nullopt, 0);
    for (int attempt = 1; attempt <= namesToTry; ++attempt) {
        const QString path = QDir::cleanPath(folder + numberedFileName(logFileName_, attempt));
        const std::optional<int> error = writeNew(path, changes.bytes);
        if (error == EEXIST)
            continue;
        SaveReport report{{}, {QStringLiteral("creating file at path %1").arg(path)}};
        if (error) {
            saved_.reset();
            report.console.append(QLatin1String(unableToCreateMessage));
            report.status = QStringLiteral("Unable to create log file %1: %2").arg(path, systemReason(*error));
        } else {
            created_[folder] = path;
            remember(path, changes);
        }
        return report;
    }
    const QString reason = QStringLiteral("Unable to create log file in %1: %2 files of this name exist")
                               .arg(folder, QString::number(namesToTry));
    return {reason, {QLatin1String(unableToCreateMessage)}};
}

SensorLogFile::SaveReport SensorLogFile::update(const QString& path)
{
    const bool fileIsAsSaved = saved_ && saved_->path == path && QFileInfo(path).size() == saved_->bytes;
    const SensorLog::Changes changes = fileIsAsSaved ? log_.changesSince(saved_->generation, saved_->bytes)
                                                     : log_.changesSince(std::nullopt, 0);
    std::optional<QString> reason;
    if (changes.rewrite) {
        if (const std::optional<int> error = writeWhole(path, changes.bytes))
            reason = systemReason(*error);
    } else if (!changes.bytes.isEmpty()) {
        reason = appendTail(path, changes.bytes, saved_->bytes);
    }
    if (reason) {
        saved_.reset();
        const QString description = QStringLiteral("Unable to save log file %1: %2").arg(path, *reason);
        return {description, {QStringLiteral("error is %1").arg(description)}};
    }
    remember(path, changes);
    return {};
}

void SensorLogFile::remember(const QString& path, const SensorLog::Changes& changes)
{
    saved_ = Saved{path, changes.generation, changes.endBytes};
}

} // namespace sensor
