#include "sensor/sensor_log.h"

namespace sensor {
namespace {

// Text from the network may carry line breaks or NUL bytes; written as they are they would
// split a row or start one the header does not describe. They are written as escapes instead.
QString asOneLine(const QString& line)
{
    QString text;
    text.reserve(line.size());
    for (const QChar c : line) {
        if (c == u'\n')
            text += QLatin1String("\\n");
        else if (c == u'\r')
            text += QLatin1String("\\r");
        else if (c == QChar(0))
            text += QLatin1String("\\0");
        else
            text += c;
    }
    return text;
}

} // namespace

SensorLog::SensorLog(QObject* parent) : QObject(parent) {}

void SensorLog::writeLog(const QString& line)
{
    if (line.isEmpty())
        return;
    QString added;
    {
        std::lock_guard lock(mutex_);
        if (content_.isEmpty())
            shouldAddHeaderToLogFile_ = true;
        if (shouldAddHeaderToLogFile_) {
            added = QLatin1String(header);
            shouldAddHeaderToLogFile_ = false;
        }
        added += asOneLine(line);
        added += QLatin1Char('\n');
        content_ += added.toUtf8();
    }
    emit logAppended(added);
}

void SensorLog::clearListenerLogFiles()
{
    {
        std::lock_guard lock(mutex_);
        content_.clear();
        ++generation_;
    }
    emit logCleared();
}

QString SensorLog::text() const
{
    std::lock_guard lock(mutex_);
    return QString::fromUtf8(content_);
}

QStringList SensorLog::newestLines(qsizetype count) const
{
    QByteArray tail;
    {
        std::lock_guard lock(mutex_);
        if (count <= 0 || content_.isEmpty())
            return {};
        // Walk back from the final "\n" so the cost follows the lines asked for, not the log.
        qsizetype start = content_.size() - 1;
        for (qsizetype found = 0; start > 0; --start) {
            if (content_[start - 1] == '\n' && ++found == count)
                break;
        }
        tail = content_.mid(start, content_.size() - 1 - start);
    }
    QStringList lines;
    for (const QByteArray& line : tail.split('\n'))
        lines.append(QString::fromUtf8(line));
    return lines;
}

bool SensorLog::isEmpty() const
{
    std::lock_guard lock(mutex_);
    return content_.isEmpty();
}

bool SensorLog::shouldAddHeaderToLogFile() const
{
    std::lock_guard lock(mutex_);
    return shouldAddHeaderToLogFile_ || content_.isEmpty();
}

SensorLog::Changes SensorLog::changesSince(std::optional<std::uint64_t> savedGeneration, qsizetype savedBytes) const
{
    std::lock_guard lock(mutex_);
    Changes changes;
    changes.generation = generation_;
    changes.endBytes = content_.size();
    changes.rewrite = savedGeneration != generation_ || savedBytes < 0 || savedBytes > content_.size();
    // The whole content is shared, not copied: the next append detaches it once.
    changes.bytes = changes.rewrite ? content_ : content_.mid(savedBytes);
    return changes;
}

} // namespace sensor
