#include "core/memory_settings.h"
#include "scan/scanner_utils.h"
#include "scanning/graph_sink.h"
#include "scanning/results_table_model.h"
#include "scanning/wifi_scan_test.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class RecordingGraph : public scanning::GraphSink {
public:
    QStringList calls;
    void addPlotToGraph(const QString& bssid, const QList<scan::ScanedResultInfo>& history) override
    {
        calls << QStringLiteral("add %1 %2").arg(bssid).arg(history.size());
    }
    void updateGraphDataPoints(const QList<scan::ScanedResultInfo>&, const QString& bssid) override { calls << "update " + bssid; }
    void removePlotFromGraph(const QString& bssid) override { calls << "remove " + bssid; }
    void highlightGraph(const QString& bssid, const scanning::WiFiScanTest&) override { calls << "highlight " + bssid; }
    void updateSSIDDetailsTab(const QString& bssid, const scanning::WiFiScanTest&) override { calls << "details " + bssid; }
    void reloadGraph(const scanning::WiFiScanTest&) override { calls << QStringLiteral("reload"); }
    void didRemoveAllPlots() override { calls << QStringLiteral("removedAll"); }
    void scanDidStartedByUser(const scanning::WiFiScanTest&) override { calls << QStringLiteral("started"); }
    void scanDidStoppedByUser() override { calls << QStringLiteral("stopped"); }
};

scan::ScanedResultInfo record(const char* bssid, const char* ssid, int channel, const char* rate, int sn)
{
    scan::ScanedResultInfo r;
    r.bssid = QString::fromLatin1(bssid);
    r.ssid = QString::fromUtf8(ssid);
    r.originalChannel = channel;
    r.maxDataRate = QString::fromLatin1(rate);
    r.singnalToNoise = sn;
    r.lastSeen = QDateTime::fromSecsSinceEpoch(1'700'000'000 + channel);
    return r;
}

class ResultsTableModelTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir_.isValid());
        test_->scanedData1 = {record("A", "bravo", 11, "130", 20), record("B", "Alpha", 1, "54(B)", 35),
                              record("C", "charlie", 36, "9", 5), record("D", "Delta", 6, "", 50)};
        // "D" has no history yet: it has just appeared.
        for (const char* bssid : {"A", "B", "C"})
            test_->scanedResults.insert(QString::fromLatin1(bssid), {test_->scanedData1.front()});
        model_.setCurrentTest(test_);
    }

    QString order() const
    {
        QString bssids;
        for (const scan::ScanedResultInfo& r : test_->scanedData1)
            bssids += r.bssid;
        return bssids;
    }

    QTemporaryDir dir_;
    RecordingGraph graph_;
    core::MemorySettings settings_;
    std::shared_ptr<scanning::WiFiScanTest> test_ = std::make_shared<scanning::WiFiScanTest>();
    scanning::ResultsTableModel model_{settings_, &graph_};
};

TEST_F(ResultsTableModelTest, SortsEachColumnByItsKey)
{
    const struct {
        const char* column;
        const char* ascending;
    } cases[] = {{"ssid", "BACD"}, {"channel", "BDAC"}, {"maxDataRate", "DCBA"}, {"sn", "CABD"}, {"lastseen", "BDAC"}};
    for (const auto& c : cases) {
        EXPECT_TRUE(model_.sortTableView(QString::fromLatin1(c.column), true));
        EXPECT_EQ(order(), QString::fromLatin1(c.ascending)) << c.column;
    }
}

TEST_F(ResultsTableModelTest, HeaderClicksFlipDirectionAndKeepTheSelectedNetwork)
{
    EXPECT_EQ(model_.lastIdentifier(), QStringLiteral("ssid"));
    EXPECT_TRUE(model_.sortAscending());
    model_.setSelectedRows({2});  // C
    model_.tableViewDidClickTableColumn(QStringLiteral("channel"));
    EXPECT_EQ(order(), QStringLiteral("BDAC"));
    EXPECT_EQ(model_.selectedRows(), QList<int>{3});
    model_.tableViewDidClickTableColumn(QStringLiteral("channel"));
    EXPECT_FALSE(model_.sortAscending());
    EXPECT_EQ(order(), QStringLiteral("CADB"));
    EXPECT_EQ(model_.selectedRows(), QList<int>{0});
    model_.tableViewDidClickTableColumn(QStringLiteral("ssid"));
    EXPECT_TRUE(model_.sortAscending());
    EXPECT_EQ(order(), QStringLiteral("BACD"));

    model_.tableViewDidClickTableColumn(QStringLiteral("join"));
    EXPECT_EQ(model_.lastIdentifier(), QStringLiteral("ssid"));
    EXPECT_EQ(order(), QStringLiteral("BACD"));
    static QStringList logged;
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { logged << text; });
    EXPECT_FALSE(model_.sortTableView(QStringLiteral("checkbox"), true));
    qInstallMessageHandler(previous);
    EXPECT_EQ(logged, QStringList{QStringLiteral("unable to sort the table 'checkbox' is not a sortable column")});
    EXPECT_EQ(order(), QStringLiteral("BACD"));

    model_.reverse();
    EXPECT_EQ(order(), QStringLiteral("DCAB"));
    model_.updateView(test_);
    EXPECT_EQ(order(), QStringLiteral("BACD"));
}

TEST_F(ResultsTableModelTest, CheckboxesDecideWhatIsPlotted)
{
    model_.setSelectedBssids({"A", "B", "C", "D"});
    model_.checkboxClicked(7);
    EXPECT_TRUE(graph_.calls.isEmpty());
    // Unticking one stops plotting all; ticking every row again restores it.
    model_.checkboxClicked(1);
    EXPECT_FALSE(model_.shouldPlotAll());
    EXPECT_FALSE(model_.isRowChecked(1));
    model_.checkboxClicked(1);
    EXPECT_TRUE(model_.shouldPlotAll());
    EXPECT_EQ(graph_.calls, (QStringList{"remove B", "add B 1"}));
    // A network ticked again is plotted last, and only once.
    EXPECT_EQ(model_.selectedBssids(), (QStringList{"A", "C", "D", "B"}));
    model_.setSelectedBssids({"C", "A", "C"});
    EXPECT_EQ(model_.selectedBssids(), (QStringList{"C", "A"}));
    model_.setSelectedBssids({"A", "B", "C", "D"});

    // The header checkbox replots every row or none.
    model_.setSelectedRows({3});
    graph_.calls.clear();
    model_.tableViewDidClickTableColumn(QStringLiteral("checkbox"));
    EXPECT_FALSE(model_.shouldPlotAll());
    EXPECT_TRUE(model_.selectedBssids().isEmpty());
    EXPECT_EQ(graph_.calls.last(), QStringLiteral("removedAll"));
    graph_.calls.clear();
    model_.tableViewDidClickTableColumn(QStringLiteral("checkbox"));
    EXPECT_EQ(model_.selectedBssids(), (QStringList{"A", "B", "C", "D"}));
    EXPECT_EQ(graph_.calls.mid(3), (QStringList{"removedAll", "add A 1", "add B 1", "add C 1", "add D 0", "highlight D"}));
}

TEST_F(ResultsTableModelTest, UpdateViewPlotsNetworksWithHistoryAndDropsTheRest)
{
    model_.setSelectedBssids({QStringLiteral("D")});
    model_.updateView(test_);
    EXPECT_EQ(graph_.calls, (QStringList{"remove D", "update A", "update B", "update C", "details ", "reload"}));

    graph_.calls.clear();
    model_.updateView(std::make_shared<scanning::WiFiScanTest>());
    EXPECT_TRUE(graph_.calls.isEmpty());
}

TEST_F(ResultsTableModelTest, CopyRowWritesTheSelectedRowsAsCsvInTableOrder)
{
    model_.setSelectedRows({2, 0});
    scan::ScanedResultInfo first = test_->scanedData1[0];
    scan::ScanedResultInfo third = test_->scanedData1[2];
    first.exportType = third.exportType = QStringLiteral("csv");
    EXPECT_EQ(model_.copyRow(), first.toString(settings_) + "\n" + third.toString(settings_) + "\n");
    EXPECT_EQ(test_->scanedData1[0].exportType, QStringLiteral("csv"));

    model_.setSelectedRows({});
    EXPECT_TRUE(model_.copyRow().isEmpty());
}

TEST_F(ResultsTableModelTest, JoinTooltipNamesTheConnectedNetwork)
{
    test_->activeBSSID = QStringLiteral("B");
    EXPECT_EQ(model_.toolTip(QStringLiteral("join"), 1), QStringLiteral("Connected network"));
    EXPECT_EQ(model_.toolTip(QStringLiteral("join"), 0), QStringLiteral("Click to join this network"));
    EXPECT_TRUE(model_.toolTip(QStringLiteral("ssid"), 1).isEmpty());
}

}  // namespace
