#include "scanning/view/scanner_tab.h"

#include "core/memory_settings.h"
#include "scanning/results_table_item_model.h"
#include "scanning/results_table_model.h"
#include "scanning/scan_test_driver.h"
#include "scanning/view/bssid_tag_dialog.h"
#include "scanning/view/export_menu.h"
#include "scanning/view/filter_bar.h"
#include "scanning/view/results_table_view.h"
#include "scanning/view/test_list_view.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/scanned_network.h"
#include "testsupport/stub_wireless_interface.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

// Fontconfig keeps a cache for the life of the process that the leak checker cannot see freed.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace {

using testsupport::scannedNetwork;

class ScriptedInterface : public testsupport::StubWirelessInterface {
public:
    QString interfaceName() const override { return QStringLiteral("wlan9"); }
    platform::ScanOutcome scanForNetworksWithSSID(const QByteArray&) override { return {networks, {}}; }
    QList<platform::ScanResult> networks{scannedNetwork("00:0b:86:ab:34:80", "lab", 44, -60),
                                         scannedNetwork("3c:a6:2f:38:f3:e0", "Home", 6, -44),
                                         scannedNetwork("10:20:30:40:50:60", "<b>x</b>", 11, -70)};
};

class SilentRunner : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString&) override { return {{}, {}, 0, true}; }
};

void application()
{
    static int argc = 1;
    static char name[] = "scanner_tab_tests";
    static char* argv[] = {name, nullptr};
    // Never destroyed: Qt's input devices must not be torn down by the exit handlers.
    if (QApplication::instance() == nullptr)
        new QApplication(argc, argv);
}

class ScannerTabTest : public testing::Test {
protected:
    // Widgets are members, so the application must exist before the first fixture does.
    static void SetUpTestSuite() { application(); }
    void SetUp() override
    {
        database.updateDatabase();
        driver.setResultsListener(&results);
        tab.resize(900, 600);
        tab.show();
    }

    void start()
    {
        tab.startPauseAction()->trigger();
        driver.waitForBackgroundWork();
    }
    scanning::ResultsTableItemModel& items() const { return tab.resultsView()->itemModel(); }
    QStringList column(const QString& identifier) const
    {
        QStringList texts;
        const int at = items().columnOf(identifier);
        for (int row = 0; row < items().rowCount(); ++row)
            texts << items().index(row, at).data().toString();
        return texts;
    }
    void clickHeader(const QString& identifier)
    {
        QHeaderView* header = tab.resultsView()->horizontalHeader();
        const int section = items().columnOf(identifier);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(section) + 4, header->height() / 2));
    }

    QTemporaryDir folder;
    testsupport::ManualClock clock{QDateTime(QDate(2024, 5, 1), QTime(12, 0))};
    testsupport::FakeTimerSource timers{clock};
    std::shared_ptr<ScriptedInterface> interface = std::make_shared<ScriptedInterface>();
    SilentRunner runner;
    scanning::ScanDatabase database{folder.filePath(QStringLiteral("Database.sqlite"))};
    core::MemorySettings settings{{{QStringLiteral("mergeScanResults"), 0},
                                   {QStringLiteral("channelColumnVisible"), true},
                                   {QStringLiteral("bssidTagColumnVisible"), true},
                                   {QStringLiteral("joinColumnVisible"), true}}};
    scanning::ScanTestDriver driver{interface, database, settings, timers, runner, QStringLiteral("/opt/skyvane/skyvane-cli"),
                                    {QStringLiteral("--simulate")}};
    scanning::ResultsTableModel results{settings};
    scanning::view::ScannerTab tab{driver, results, settings};
};

TEST_F(ScannerTabTest, RunControlsAndTestListFollowTheDriver)
{
    auto* interval = tab.findChild<QComboBox*>(QStringLiteral("intervalSelector"));
    ASSERT_NE(interval, nullptr);
    interval->setCurrentIndex(interval->findData(10));
    EXPECT_EQ(driver.refreshIntervalSeconds(), 10);
    QAction* run = tab.startPauseAction();
    EXPECT_EQ(run->text(), "Start Scan");
    EXPECT_FALSE(tab.stopAction()->isEnabled());
    start();
    EXPECT_EQ(run->text(), "Pause Scan");
    EXPECT_FALSE(interval->isEnabled());
    EXPECT_EQ(driver.wifiScanTestArray().first()->refreshInterval, 10);
    run->trigger();
    EXPECT_EQ(run->text(), "Resume Scan");
    run->trigger();
    EXPECT_EQ(run->text(), "Pause Scan");
    tab.stopAction()->trigger();
    EXPECT_EQ(run->text(), "Start Scan");
    EXPECT_TRUE(interval->isEnabled());

    QListWidget* list = tab.testList()->list();
    ASSERT_EQ(list->count(), 1);
    EXPECT_EQ(list->item(0)->text(), "Scanned");
    // An edit in the list is a rename in the driver, and survives the next start.
    list->item(0)->setText(QStringLiteral("Office"));
    EXPECT_EQ(driver.wifiScanTestArray().first()->testLabel, "Office");
    start();
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->text(), "Office");
}

TEST_F(ScannerTabTest, DeletingAsksFirstAndTheRunningTestIsRefused)
{
    start();
    tab.stopAction()->trigger();
    start();
    QListWidget* list = tab.testList()->list();
    auto* remove = tab.testList()->findChild<QToolButton*>(QStringLiteral("deleteTestButton"));
    ASSERT_NE(remove, nullptr);

    list->setCurrentRow(0);
    remove->click();
    auto* refusal = tab.findChild<QMessageBox*>(QStringLiteral("scannerAlert"));
    ASSERT_NE(refusal, nullptr);
    EXPECT_EQ(refusal->text(), "You cannot delete currently running test.");
    EXPECT_EQ(list->count(), 2);

    QString asked;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        asked = box->text();
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == QLatin1String("Yes"))
                button->click();
        }
    });
    list->setCurrentRow(1);
    remove->click();
    EXPECT_EQ(asked, "Are you sure you want to delete?");
    EXPECT_EQ(list->count(), 1);
}

TEST_F(ScannerTabTest, ScanFillsTheTableByNameAndHeaderClicksReverseKeepingTheSelection)
{
    start();
    ASSERT_EQ(items().rowCount(), 3);
    EXPECT_EQ(column("ssid"), (QStringList{"<b>x</b>", "Home", "lab"}));
    tab.resultsView()->selectRow(1);
    EXPECT_EQ(results.selectedRows(), QList<int>{1});

    clickHeader(QStringLiteral("ssid"));
    EXPECT_EQ(column("ssid"), (QStringList{"lab", "Home", "<b>x</b>"}));
    clickHeader(QStringLiteral("channel"));
    EXPECT_EQ(column("channel"), (QStringList{"6", "11", "44"}));
    const QModelIndexList selected = tab.resultsView()->selectionModel()->selectedRows();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(items().index(selected.first().row(), items().columnOf("ssid")).data().toString(), "Home");

    // A later scan reloads the table; the chosen network is still the selected row.
    tab.startPauseAction()->trigger();
    tab.startPauseAction()->trigger();
    driver.performScanForeground();
    driver.waitForBackgroundWork();
    ASSERT_EQ(tab.resultsView()->selectionModel()->selectedRows().size(), 1);
}

TEST_F(ScannerTabTest, FilterApplyAndClearChangeTheRowsAndTheButton)
{
    start();
    auto* name = tab.filterBar()->findChild<QLineEdit*>(QStringLiteral("ssidForFilterField"));
    ASSERT_NE(name, nullptr);
    name->setText(QStringLiteral("LA"));
    tab.applyFilterAction()->trigger();
    driver.waitForBackgroundWork();
    EXPECT_EQ(column("ssid"), QStringList{"lab"});
    EXPECT_EQ(tab.applyFilterAction()->text(), "Filter Applied");

    tab.filterBar()->clearFilterAction()->trigger();
    driver.waitForBackgroundWork();
    EXPECT_EQ(items().rowCount(), 3);
    EXPECT_TRUE(name->text().isEmpty());
    EXPECT_EQ(tab.applyFilterAction()->text(), "Apply Filter");
}

TEST_F(ScannerTabTest, NameCompletionIsACaseInsensitivePrefixOverSeenNames)
{
    interface->networks = {scannedNetwork("00:00:00:00:00:01", "Chez", 1, -50), scannedNetwork("00:00:00:00:00:02", "chalet", 1, -50),
                           scannedNetwork("00:00:00:00:00:03", "Rich", 1, -50)};
    start();
    QCompleter* completer = tab.filterBar()->nameCompleter();
    completer->setCompletionPrefix(QStringLiteral("ch"));
    QStringList offered;
    for (int row = 0; completer->setCurrentRow(row); ++row)
        offered << completer->currentCompletion();
    EXPECT_EQ(offered, (QStringList{"Chez", "chalet"}));
}

TEST_F(ScannerTabTest, HeaderMenuHidesAColumnAndStoresTheSetting)
{
    start();
    QMenu* menu = tab.resultsView()->headerMenu();
    auto* channel = menu->findChild<QAction*>(QStringLiteral("channel"));
    ASSERT_NE(channel, nullptr);
    EXPECT_TRUE(channel->isChecked());
    EXPECT_EQ(menu->findChild<QAction*>(QStringLiteral("ssid")), nullptr);
    channel->trigger();
    EXPECT_EQ(items().columnOf("channel"), -1);
    EXPECT_FALSE(core::settingIsOn(settings.value(QStringLiteral("channelColumnVisible"))));
    EXPECT_FALSE(tab.resultsView()->headerMenu()->findChild<QAction*>(QStringLiteral("channel"))->isChecked());
}

TEST_F(ScannerTabTest, CopyPutsTheSelectedRowsOnTheClipboardAsCsvLines)
{
    start();
    QTableView* view = tab.resultsView();
    view->selectRow(0);
    view->selectionModel()->select(items().index(2, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    tab.copyAction()->trigger();
    const QString copied = QApplication::clipboard()->text();
    EXPECT_EQ(copied.split(QLatin1Char('\n'), Qt::SkipEmptyParts).size(), 2);
    EXPECT_TRUE(copied.contains(QLatin1String("lab")));
    EXPECT_FALSE(copied.contains(QLatin1String("Home")));
}

TEST_F(ScannerTabTest, UntrustedTextsStayLiteral)
{
    start();
    const int row = static_cast<int>(column("ssid").indexOf(QStringLiteral("<b>x</b>")));
    ASSERT_GE(row, 0);
    results.monitorSelected(QStringLiteral("bssidTag"), row);
    auto* dialog = tab.findChild<scanning::view::BssidTagDialog*>();
    ASSERT_NE(dialog, nullptr);
    auto* bssid = dialog->findChild<QLabel*>(QStringLiteral("bssidTagLabel"));
    EXPECT_EQ(bssid->textFormat(), Qt::PlainText);
    dialog->tagField()->setText(QStringLiteral("<i>t</i>"));
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
    EXPECT_EQ(settings.value(QStringLiteral("10:20:30:40:50:60")).toString(), "<i>t</i>");
    EXPECT_EQ(column("bssidTag").at(row), "<i>t</i>");
}

TEST_F(ScannerTabTest, ReturnOnACellJoinsOrOpensItsWindowAsTheMouseWould)
{
    start();
    QTableView* view = tab.resultsView();
    const int row = static_cast<int>(column("ssid").indexOf(QStringLiteral("Home")));
    QStringList joined;
    int samplesOpened = 0;
    QObject::connect(&results, &scanning::ResultsTableModel::joinWindowRequested, view,
                     [&](const scan::ScanedResultInfo& record) { joined << record.ssid; });
    QObject::connect(&results, &scanning::ResultsTableModel::samplesWindowRequested, view, [&] { ++samplesOpened; });
    const auto returnOn = [&](const char* identifier) {
        view->setCurrentIndex(items().index(row, items().columnOf(QLatin1String(identifier))));
        QTest::keyClick(view, Qt::Key_Return);
    };
    returnOn("join");
    EXPECT_EQ(joined, QStringList{"Home"});
    returnOn("ssid");
    EXPECT_EQ(samplesOpened, 1);
    returnOn("bssidTag");
    EXPECT_NE(tab.findChild<scanning::view::BssidTagDialog*>(), nullptr);

    const QModelIndex tick = items().index(row, items().columnOf(QStringLiteral("checkbox")));
    const QVariant before = tick.data(Qt::CheckStateRole);
    view->setCurrentIndex(tick);
    QTest::keyClick(view, Qt::Key_Space);
    EXPECT_NE(items().index(row, tick.column()).data(Qt::CheckStateRole), before);
}

TEST_F(ScannerTabTest, ExportWritesOffTheGuiThreadAndReportsAMissingSelection)
{
    start();
    tab.stopAction()->trigger();
    QString suggested;
    const QString path = folder.filePath(QStringLiteral("out.csv"));
    tab.exporter()->setSavePathChooser([&](const QString& name) {
        suggested = name;
        return path;
    });
    QStringList statuses;
    QObject::connect(&tab, &scanning::view::ScannerTab::statusMessage, [&](const QString& text) { statuses << text; });

    tab.exporter()->exportScanResults(scanning::ScanExporter::SelectedTestCsv);
    tab.exporter()->waitForExports();
    EXPECT_TRUE(suggested.startsWith(QLatin1String("skyvane-single-scan-export-")));
    EXPECT_EQ(statuses, QStringList{"Please select a test to generate the report."});
    auto* alert = tab.findChild<QMessageBox*>(QStringLiteral("scannerAlert"));
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->textFormat(), Qt::PlainText);
    EXPECT_FALSE(QFile::exists(path));

    tab.testList()->list()->setCurrentRow(0);
    tab.exporter()->exportScanResults(scanning::ScanExporter::SelectedTestCsv);
    tab.exporter()->waitForExports();
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll().count('\n'), 4);  // the heading and one line per network
}

} // namespace

// The next launch opens with the columns where the user put them and as wide as they were
// left; the first scan does not fit them again.
TEST_F(ScannerTabTest, ColumnOrderAndWidthsSurviveARestart)
{
    QHeaderView* header = tab.resultsView()->horizontalHeader();
    const int channel = items().columnOf(QStringLiteral("channel"));
    header->moveSection(header->visualIndex(channel), 1);
    header->resizeSection(channel, 211);
    tab.saveLayout(settings);

    scanning::ResultsTableModel nextResults{settings};
    scanning::view::ScannerTab next{driver, nextResults, settings};
    next.restoreLayout(settings);
    driver.setResultsListener(&nextResults);
    start();
    QHeaderView* restored = next.resultsView()->horizontalHeader();
    EXPECT_EQ(restored->visualIndex(channel), 1);
    EXPECT_EQ(restored->sectionSize(channel), 211);
}
