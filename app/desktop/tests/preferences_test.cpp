#include "app/desktop/desktop_application.h"
#include "app/desktop/general_preferences.h"
#include "app/desktop/preferences_window.h"
#include "app/desktop/scan_main_window.h"
#include "app/settings/settings_store.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using app::desktop::GeneralPreferences;
using app::desktop::PreferencesWindow;

class Preferences : public testing::Test {
protected:
    Preferences() : settings(folder.filePath(QStringLiteral("skyvane.conf"))) { settings.setupDefaults(); }

    QStringList changedKeys(const QSignalSpy& spy) const
    {
        QStringList keys;
        for (const QList<QVariant>& arguments : spy)
            keys << arguments.at(0).toString();
        return keys;
    }

    QTemporaryDir folder;
    SettingsStore settings;
};

TEST_F(Preferences, SwitchesWriteZeroOrOneExceptTheSummaryWhichIsABoolean)
{
    GeneralPreferences general(settings);
    QSignalSpy changed(&general, &GeneralPreferences::settingChanged);
    general.setOn(QStringLiteral("showGridLinesOnGraph"), false);
    general.setOn(QStringLiteral("showRSSIValueOnGraph"), true);
    general.setOn(QStringLiteral("mergeScanResults"), true);
    general.setOn(QStringLiteral("SHOW_SUMMARY_WINDOW"), false);
    EXPECT_EQ(settings.value(QStringLiteral("showGridLinesOnGraph")).toInt(), 0);
    EXPECT_EQ(settings.value(QStringLiteral("showRSSIValueOnGraph")).toInt(), 1);
    // The scan database merges only when the value is exactly 1, not "true".
    EXPECT_EQ(settings.value(QStringLiteral("mergeScanResults")).toString(), "1");
    EXPECT_FALSE(core::settingIsOn(settings.value(QStringLiteral("SHOW_SUMMARY_WINDOW"))));
    EXPECT_EQ(changedKeys(changed), (QStringList{"showGridLinesOnGraph", "showRSSIValueOnGraph", "mergeScanResults",
                                                 "SHOW_SUMMARY_WINDOW"}));

    // A field left without a change is not announced again.
    general.setOn(QStringLiteral("mergeScanResults"), true);
    EXPECT_EQ(general.setListenerPort(general.listenerPort()), "");
    EXPECT_EQ(changed.count(), 4);
}

TEST_F(Preferences, PortAndIntervalOutsideTheirRangesAreRefusedAndNotWritten)
{
    GeneralPreferences general(settings);
    QSignalSpy changed(&general, &GeneralPreferences::settingChanged);
    for (const QString port : {"0", "65536", "-1", "80a", "", "5.5"}) {
        EXPECT_FALSE(general.setListenerPort(port).isEmpty()) << port.toStdString();
    }
    for (const QString interval : {"0", "-5", "soon", "", "inf", "nan"}) {
        EXPECT_FALSE(general.setAutoSaveInterval(interval).isEmpty()) << interval.toStdString();
    }
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(general.listenerPort(), "5555");
    EXPECT_EQ(general.autoSaveInterval(), "5");

    EXPECT_EQ(general.setListenerPort(QStringLiteral(" 65535 ")), "");
    EXPECT_EQ(settings.value(QStringLiteral("udp_listener_port")).toInt(), 65535);
    EXPECT_EQ(general.setListenerPort(QStringLiteral("1")), "");
    EXPECT_EQ(general.setAutoSaveInterval(QStringLiteral("2.5")), "");
    EXPECT_DOUBLE_EQ(settings.value(QStringLiteral("udp_auto_save_log_time_interval")).toDouble(), 2.5);
    EXPECT_EQ(general.setAutoSaveInterval(QStringLiteral("30")), "");
    EXPECT_EQ(general.autoSaveInterval(), "30");
    EXPECT_EQ(changed.count(), 4);
}

TEST_F(Preferences, EachControlWritesItsKeyAndAnnouncesIt)
{
    PreferencesWindow window(settings);
    window.setFolderChooser([](QWidget*, const QString&) { return QStringLiteral("/var/log/skyvane"); });
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.windowTitle(), "Skyvane Preferences");
    QSignalSpy changed(&window, &PreferencesWindow::settingChanged);

    const QList<std::pair<const char*, const char*>> switches{
        {"showGridLinesOnGraphCheckBox", "showGridLinesOnGraph"},
        {"showRSSIValueOnGraphCheckBox", "showRSSIValueOnGraph"},
        {"showSummaryWindowCheckBox", "SHOW_SUMMARY_WINDOW"},
        {"mergeScanResultsCheckBox", "mergeScanResults"}};
    for (const auto& [name, key] : switches) {
        auto* box = window.findChild<QCheckBox*>(QLatin1String(name));
        ASSERT_NE(box, nullptr) << name;
        EXPECT_EQ(box->isChecked(), core::settingIsOn(settings.value(QLatin1String(key)))) << name;
        const bool wasOn = box->isChecked();
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Space);
        EXPECT_EQ(core::settingIsOn(settings.value(QLatin1String(key))), !wasOn) << name;
        ASSERT_FALSE(changed.isEmpty());
        EXPECT_EQ(changed.takeLast().at(0).toString(), key);
    }

    auto* fontSize = window.findChild<QSpinBox*>(QStringLiteral("fontSizeSpinBox"));
    ASSERT_NE(fontSize, nullptr);
    fontSize->setFocus();
    QTest::keyClick(fontSize, Qt::Key_Up);
    EXPECT_EQ(settings.value(QStringLiteral("fontSize")).toInt(), 13);
    EXPECT_EQ(changed.takeLast().at(0).toString(), "fontSize");

    window.findChild<QPushButton*>(QStringLiteral("chooseLogFolderButton"))->click();
    EXPECT_EQ(settings.value(QStringLiteral("udp_log_file_path")).toString(), "/var/log/skyvane");
    EXPECT_EQ(window.findChild<QLineEdit*>(QStringLiteral("logFolderField"))->text(), "/var/log/skyvane");
    EXPECT_EQ(changed.takeLast().at(0).toString(), "udp_log_file_path");

    for (QWidget* control : window.findChildren<QWidget*>()) {
        // Qt's own parts of a control (a spin box's line edit, the tab bar) are named by Qt.
        if ((control->focusPolicy() & Qt::TabFocus) && !control->objectName().startsWith(QLatin1String("qt_"))) {
            EXPECT_FALSE(control->objectName().isEmpty()) << control->metaObject()->className();
            EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
        }
    }
}

TEST_F(Preferences, ATypedBadPortShowsWhyAndKeepsTheStoredOne)
{
    PreferencesWindow window(settings);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* port = window.findChild<QLineEdit*>(QStringLiteral("listenerPortField"));
    auto* message = window.findChild<QLabel*>(QStringLiteral("preferencesMessage"));
    ASSERT_NE(port, nullptr);
    ASSERT_NE(message, nullptr);
    QSignalSpy changed(&window, &PreferencesWindow::settingChanged);

    port->setFocus();
    port->selectAll();
    QTest::keyClicks(port, QStringLiteral("70000"));
    QTest::keyClick(port, Qt::Key_Return);
    EXPECT_EQ(settings.value(QStringLiteral("udp_listener_port")).toInt(), 5555);
    EXPECT_TRUE(message->isVisible());
    EXPECT_FALSE(message->text().isEmpty());
    EXPECT_EQ(changed.count(), 0);

    port->selectAll();
    QTest::keyClicks(port, QStringLiteral("6000"));
    QTest::keyClick(port, Qt::Key_Return);
    EXPECT_EQ(settings.value(QStringLiteral("udp_listener_port")).toInt(), 6000);
    EXPECT_FALSE(message->isVisible());
    EXPECT_EQ(changedKeys(changed), QStringList{"udp_listener_port"});
}

TEST_F(Preferences, PositionAndPaneAreKeptAsText)
{
    {
        PreferencesWindow window(settings);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        window.move(40, 60);
        window.close();
    }
    EXPECT_EQ(settings.value(QStringLiteral("MASPreferences Frame Top Left")).toString(), "{40, 60}");
    EXPECT_EQ(settings.value(QStringLiteral("MASPreferences Selected Identifier View")).toString(),
              "GeneralPreferences");
    PreferencesWindow reopened(settings);
    EXPECT_EQ(reopened.pos(), QPoint(40, 60));
}

TEST(PreferencesMenu, CtrlCommaOpensOneWindowWhoseFontSizeReachesTheResultsTable)
{
    QTemporaryDir folder;
    app::desktop::DesktopArguments arguments = app::desktop::parseDesktopArguments(
        {QStringLiteral("--simulate=20"), QStringLiteral("--db"), folder.filePath(QStringLiteral("Database.sqlite"))});
    QStringList reasons;
    app::desktop::DesktopApplication desktop(arguments, [&](const QString& reason) { reasons << reason; });
    ASSERT_TRUE(desktop.launch()) << reasons.join(QLatin1Char('\n')).toStdString();
    app::desktop::ScanMainWindow* window = desktop.mainWindow();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));

    QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
    PreferencesWindow* preferences = window->preferencesWindow();
    ASSERT_NE(preferences, nullptr);
    EXPECT_TRUE(preferences->isVisible());
    preferences->close();
    window->openPreferences();
    EXPECT_EQ(window->preferencesWindow(), preferences);

    auto* table = window->findChild<QTableView*>(QStringLiteral("scanResultsTableView"));
    auto* fontSize = preferences->findChild<QSpinBox*>(QStringLiteral("fontSizeSpinBox"));
    ASSERT_NE(table, nullptr);
    ASSERT_NE(fontSize, nullptr);
    const int before = fontSize->value();
    const int size = before == 20 ? 21 : 20;
    fontSize->setValue(size);
    EXPECT_EQ(table->font().pointSize(), size);
    fontSize->setValue(before);
    desktop.terminate();
}

} // namespace
