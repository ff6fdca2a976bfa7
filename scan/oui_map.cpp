#include "scan/oui_map.h"

#include "scan/log_category.h"

#include <QFile>
#include <QStringView>
#include <QtDebug>

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcScan) << "vendor table" << path << "cannot be read; every vendor shows as Unknown";
        return {};
    }
    return file.readAll();
}

} // namespace

OuiMap& OuiMap::shared()
{
    static OuiMap map;
    return map;
}

void OuiMap::ensureLoaded()
{
    // Checked without the lock first: every lookup passes here.
    if (loaded_.load(std::memory_order_acquire)) {
        return;
    }
    std::lock_guard lock(mutex_);
    if (!loaded_.load(std::memory_order_relaxed)) {
        table_ = parse(readAll(QString::fromLatin1(resourcePath)));
        loaded_.store(true, std::memory_order_release);
    }
}

void OuiMap::loadFrom(const QString& path) { install(parse(readAll(path))); }

void OuiMap::install(QHash<QString, QString> table)
{
    std::lock_guard lock(mutex_);
    table_.swap(table);
    loaded_.store(true, std::memory_order_release);
}

QString OuiMap::vendorForKey(const QString& key) const
{
    std::lock_guard lock(mutex_);
    return table_.value(key);
}

qsizetype OuiMap::size() const
{
    std::lock_guard lock(mutex_);
    return table_.size();
}

QHash<QString, QString> OuiMap::parse(const QByteArray& utf8)
{
    QHash<QString, QString> table;
    const QString text = QString::fromUtf8(utf8);
    table.reserve(text.count(QLatin1Char('\n')) + 1);
    for (const QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        const qsizetype tab = line.indexOf(QLatin1Char('\t'));
        if (tab < 0) {
            continue;
        }
        const qsizetype nextTab = line.indexOf(QLatin1Char('\t'), tab + 1);
        QStringView vendor = line.mid(tab + 1, nextTab < 0 ? -1 : nextTab - tab - 1);
        // The comment is cut here rather than on every lookup: the result is the same and
        // lookups run once per network on every scan.
        const qsizetype hash = vendor.indexOf(QLatin1Char('#'));
        if (hash >= 0) {
            vendor = vendor.left(hash);
        }
        table.insert(line.left(tab).toString(), vendor.trimmed().toString());
    }
    return table;
}
