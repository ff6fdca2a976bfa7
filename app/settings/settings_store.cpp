#include "app/settings/settings_store.h"

#include "app/settings/log_category.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTimeZone>
#include <QtDebug>

#include <plist/plist.h>

#include <cstdlib>
#include <limits>

namespace {

// Nesting deeper than this is not a settings file but an attack on the stack.
constexpr int maxPlistDepth = 32;

QString defaultConfigFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/skyvane/skyvane.conf");
}

// Moves an unreadable store aside instead of letting a later write replace it: it may be the
// only copy of the user's tags and choices.
bool preserveCorruptFile(const QString& path)
{
    QString target = path + QStringLiteral(".corrupt");
    for (int n = 1; QFileInfo::exists(target); ++n) {
        target = path + QStringLiteral(".corrupt.%1").arg(n);
    }
    if (QFile::rename(path, target)) {
        qCWarning(lcSettings) << "settings file" << path << "is corrupt; kept it as" << target << "and started afresh";
        return true;
    }
    qCWarning(lcSettings) << "settings file" << path << "is corrupt and could not be moved to" << target
               << "; settings will not be saved";
    return false;
}

std::unique_ptr<QSettings> openStore(const QString& path)
{
    auto store = std::make_unique<QSettings>(path, QSettings::IniFormat);
    if (store->status() == QSettings::FormatError) {
        store.reset();
        if (preserveCorruptFile(path)) {
            store = std::make_unique<QSettings>(path, QSettings::IniFormat);
        }
    }
    return store;
}

QVariant fromPlist(plist_t node, int depth);

QVariantList arrayFromPlist(plist_t node, int depth)
{
    QVariantList list;
    const uint32_t count = plist_array_get_size(node);
    list.reserve(static_cast<qsizetype>(count));
    for (uint32_t i = 0; i < count; ++i) {
        list.append(fromPlist(plist_array_get_item(node, i), depth + 1));
    }
    return list;
}

QVariantMap dictFromPlist(plist_t node, int depth)
{
    QVariantMap map;
    plist_dict_iter iter = nullptr;
    plist_dict_new_iter(node, &iter);
    if (iter == nullptr) {
        return map;
    }
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(node, iter, &key, &value);
        if (key == nullptr) {
            break;
        }
        map.insert(QString::fromUtf8(key), fromPlist(value, depth + 1));
        std::free(key);
    }
    std::free(iter);
    return map;
}

QVariant fromPlist(plist_t node, int depth)
{
    if (node == nullptr || depth > maxPlistDepth) {
        return {};
    }
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_UINT: {
        // The library keeps negative integers as their two's-complement bit pattern.
        uint64_t raw = 0;
        plist_get_uint_val(node, &raw);
        const auto value = static_cast<qint64>(raw);
        if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()) {
            return static_cast<int>(value);
        }
        return value;
    }
    case PLIST_REAL: {
        double value = 0.0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_STRING: {
        uint64_t length = 0;
        const char* text = plist_get_string_ptr(node, &length);
        return text == nullptr ? QString() : QString::fromUtf8(text, static_cast<qsizetype>(length));
    }
    case PLIST_DATA: {
        uint64_t length = 0;
        const char* bytes = plist_get_data_ptr(node, &length);
        return bytes == nullptr ? QByteArray() : QByteArray(bytes, static_cast<qsizetype>(length));
    }
    case PLIST_DATE: {
        int32_t seconds = 0;
        int32_t micros = 0;
        plist_get_date_val(node, &seconds, &micros);
        // Property-list dates count from the start of 2001, UTC.
        const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
        return epoch.addMSecs(qint64{seconds} * 1000 + micros / 1000);
    }
    case PLIST_ARRAY:
        return arrayFromPlist(node, depth);
    case PLIST_DICT:
        return dictFromPlist(node, depth);
    default:
        return {};
    }
}

} // namespace

SettingsStore::SettingsStore(const QString& configFile, QObject* parent)
    : QObject(parent)
    , store_(openStore(configFile.isEmpty() ? defaultConfigFile() : configFile))
    , defaults_(builtInDefaults())
{
}

SettingsStore::~SettingsStore() = default;

bool SettingsStore::setupDefaults(const QString& plistPath)
{
    const QString path = plistPath.isEmpty() ? defaultsResourcePath() : plistPath;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcSettings) << "defaults file" << path << "cannot be read (" << file.errorString()
                   << "); using the built-in defaults";
        return false;
    }
    const QByteArray data = file.readAll();
    if (data.isEmpty() || data.size() > std::numeric_limits<uint32_t>::max()) {
        qCWarning(lcSettings) << "defaults file" << path << "is empty or too large; using the built-in defaults";
        return false;
    }
    plist_t root = nullptr;
    plist_from_memory(data.constData(), static_cast<uint32_t>(data.size()), &root);
    if (root == nullptr || plist_get_node_type(root) != PLIST_DICT) {
        qCWarning(lcSettings) << "defaults file" << path << "is not a property-list dictionary; using the built-in defaults";
        plist_free(root);
        return false;
    }
    registerDefaults(dictFromPlist(root, 0));
    plist_free(root);
    return true;
}

void SettingsStore::registerDefaults(const QVariantMap& defaults)
{
    std::lock_guard lock(mutex_);
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it) {
        defaults_.insert(it.key(), it.value());
    }
}

QVariantMap SettingsStore::registeredDefaults() const
{
    std::lock_guard lock(mutex_);
    return defaults_;
}

QVariant SettingsStore::value(const QString& key) const
{
    if (key.isEmpty()) {
        return {};
    }
    std::lock_guard lock(mutex_);
    if (store_ && store_->contains(key)) {
        return store_->value(key);
    }
    return defaults_.value(key);
}

void SettingsStore::setValue(const QString& key, const QVariant& value)
{
    if (key.isEmpty() || !value.isValid() || value.isNull()) {
        return;
    }
    bool saved = false;
    {
        std::lock_guard lock(mutex_);
        if (store_) {
            // Scans save the same AP names and counts again and again; only a change costs a write.
            if (store_->value(key) == value && store_->status() == QSettings::NoError) {
                return;
            }
            store_->setValue(key, value);
            store_->sync();
            saved = store_->status() == QSettings::NoError;
        }
    }
    if (!saved) {
        qCWarning(lcSettings) << "could not save setting" << key << "to" << fileName();
        emit saveFailed(QString::fromLatin1(unableToSaveMessage));
    }
}

void SettingsStore::removeUserSetting(const QString& key)
{
    if (key.isEmpty()) {
        return;
    }
    bool saved = false;
    {
        std::lock_guard lock(mutex_);
        if (store_) {
            store_->remove(key);
            store_->sync();
            saved = store_->status() == QSettings::NoError;
        }
    }
    if (!saved) {
        qCWarning(lcSettings) << "could not remove setting" << key << "from" << fileName();
        emit saveFailed(QString::fromLatin1(unableToSaveMessage));
    }
}

bool SettingsStore::isAvailable() const
{
    std::lock_guard lock(mutex_);
    return store_ && store_->status() == QSettings::NoError && store_->isWritable();
}

QString SettingsStore::fileName() const
{
    std::lock_guard lock(mutex_);
    return store_ ? store_->fileName() : QString();
}

QString SettingsStore::defaultsResourcePath()
{
    return QStringLiteral(":/") + QLatin1String(applicationId) + QStringLiteral("-default-values.plist");
}

QVariantMap SettingsStore::builtInDefaults()
{
    QVariantMap defaults{
        {QStringLiteral("showGridLinesOnGraph"), 1},
        {QStringLiteral("showRSSIValueOnGraph"), 0},
        {QStringLiteral("fontSize"), 12},
        {QStringLiteral("SHOW_SUMMARY_WINDOW"), true},
        {QStringLiteral("TOTAL_NETWORKS"), QStringLiteral("0")},
        {QStringLiteral("TOTAL_24MHZ_NETWORKS"), QStringLiteral("0")},
        // No folder is guessed for the sensor log: saving asks the user to choose one.
        {QStringLiteral("udp_log_file_path"), QStringLiteral("")},
        {QStringLiteral("udp_listener_port"), 5555},
        {QStringLiteral("udp_auto_save_log_time_interval"), 5},
    };
    static const char* const columns[] = {"join", "channel", "channelBond", "channelWidth", "ibss", "lastseen",
        "maxDataRate", "noise", "phyMode", "rssi", "sn", "numberOfStreams", "wps", "security", "cc", "vendorName",
        "apname", "connectedClients", "bssidTag", "channelUtilization", "protectionMode", "mobilityDomain"};
    for (const char* column : columns) {
        defaults.insert(QLatin1String(column) + QStringLiteral("ColumnVisible"), 1);
    }
    return defaults;
}
