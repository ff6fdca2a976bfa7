#include "app/settings/settings_store.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

namespace {

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class SettingsStoreTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
    QString path(const char* name) const { return dir_.filePath(QString::fromLatin1(name)); }
    QString storePath() const { return path("skyvane.conf"); }

    QTemporaryDir dir_;
};

TEST_F(SettingsStoreTest, ShippedDefaultsMatchTheBuiltInFallbacks)
{
    SettingsStore store(storePath());
    ASSERT_TRUE(store.setupDefaults());
    const QVariantMap registered = store.registeredDefaults();
    const QVariantMap builtIn = SettingsStore::builtInDefaults();
    EXPECT_EQ(registered.keys(), builtIn.keys());
    for (auto it = builtIn.cbegin(); it != builtIn.cend(); ++it)
        EXPECT_EQ(registered.value(it.key()).toString(), it.value().toString()) << it.key().toStdString();
    EXPECT_EQ(store.value(QStringLiteral("udp_auto_save_log_time_interval")).toInt(), 5);
    EXPECT_FALSE(store.value(QStringLiteral("noSuchKey")).isValid());
}

TEST_F(SettingsStoreTest, BrokenOrMissingDefaultsFileKeepsFallbacks)
{
    writeFile(path("garbage.plist"), "<plist><dict><key>fontSize</key><integer>");
    writeFile(path("array.plist"), "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>");
    writeFile(path("override.plist"),
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>fontSize</key><integer>20</integer>"
        "<key>nested</key><dict><key>list</key><array><real>1.5</real><false/></array></dict></dict></plist>");
    for (const char* name : {"garbage.plist", "array.plist", "missing.plist"}) {
        SettingsStore store(storePath());
        EXPECT_FALSE(store.setupDefaults(path(name))) << name;
        EXPECT_EQ(store.registeredDefaults(), SettingsStore::builtInDefaults()) << name;
    }

    SettingsStore store(storePath());
    ASSERT_TRUE(store.setupDefaults(path("override.plist")));
    EXPECT_EQ(store.value(QStringLiteral("fontSize")).toInt(), 20);
    EXPECT_EQ(store.value(QStringLiteral("udp_auto_save_log_time_interval")).toInt(), 5);
    const QVariantMap nested = store.value(QStringLiteral("nested")).toMap();
    EXPECT_EQ(nested.value(QStringLiteral("list")).toList(), (QVariantList{1.5, false}));
}

TEST_F(SettingsStoreTest, StoredValuesOverrideDefaultsAndPersist)
{
    const std::pair<const char*, QVariant> cases[] = {{"fontSize", 16}, {"AA:BB:CC:DD:EE:FF-apname", "lobby"},
        {"aa:bb:cc:dd:ee:ff", "lower-case twin"}, {"MASPreferences Frame Top Left", "100 200 640 480 0 0 1440 900 "},
        {"tag with = and ;", "value; with = signs"}, {"udp_log_file_path", "file:///home/user/logs/"}};
    {
        SettingsStore store(storePath());
        store.setupDefaults();
        for (const auto& [key, value] : cases)
            store.setValue(QString::fromLatin1(key), value);
        store.setValue(QStringLiteral("nullValue"), QVariant());
        store.setValue(QString(), 1);
        EXPECT_EQ(store.value(QStringLiteral("fontSize")).toInt(), 16);
    }

    SettingsStore reopened(storePath());
    reopened.setupDefaults();
    for (const auto& [key, value] : cases)
        EXPECT_EQ(reopened.value(QString::fromLatin1(key)).toString(), value.toString()) << key;
    EXPECT_FALSE(reopened.value(QStringLiteral("nullValue")).isValid());

    reopened.removeUserSetting(QStringLiteral("fontSize"));
    EXPECT_EQ(reopened.value(QStringLiteral("fontSize")).toInt(), 12);
}

TEST_F(SettingsStoreTest, CorruptStoreIsKeptAsideAndStartsFromDefaults)
{
    const QByteArray corrupt("[General\nfontSize=30\n\x01\x02 not a setting\n");
    writeFile(storePath(), corrupt);

    SettingsStore store(storePath());
    EXPECT_EQ(store.value(QStringLiteral("fontSize")).toInt(), 12);
    EXPECT_EQ(readFile(storePath() + QStringLiteral(".corrupt")), corrupt);

    bool failed = false;
    QObject::connect(&store, &SettingsStore::saveFailed, [&failed] { failed = true; });
    store.setValue(QStringLiteral("fontSize"), 14);
    EXPECT_FALSE(failed);
    EXPECT_EQ(SettingsStore(storePath()).value(QStringLiteral("fontSize")).toInt(), 14);

    // A second corruption must not overwrite the first copy.
    writeFile(storePath(), corrupt + "again");
    SettingsStore again(storePath());
    EXPECT_EQ(readFile(storePath() + QStringLiteral(".corrupt")), corrupt);
    EXPECT_EQ(readFile(storePath() + QStringLiteral(".corrupt.1")), corrupt + "again");
}

TEST_F(SettingsStoreTest, UnwritableStoreReportsSaveFailed)
{
    // A regular file where the store's folder should be defeats even a privileged user.
    writeFile(path("blocker"), "not a folder");
    SettingsStore store(path("blocker") + QStringLiteral("/skyvane.conf"));

    QStringList messages;
    QObject::connect(&store, &SettingsStore::saveFailed, [&messages](const QString& m) { messages.append(m); });
    store.setValue(QStringLiteral("fontSize"), 3);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages.front(), QStringLiteral("Unable to save settings. Check console log files for details."));
    EXPECT_FALSE(store.isAvailable());
}

TEST_F(SettingsStoreTest, OneStoreSurvivesConcurrentUse)
{
    SettingsStore store(storePath());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &store] {
            const QString key = QStringLiteral("thread-%1").arg(t);
            for (int i = 0; i < 10; ++i) {
                store.setValue(key, i);
                store.value(QStringLiteral("thread-0"));
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(store.value(QStringLiteral("thread-%1").arg(t)).toInt(), 9);
}

} // namespace
