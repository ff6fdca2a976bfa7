#include "core/memory_settings.h"
#include "scan/record_columns.h"
#include "scanning/results_table_item_model.h"
#include "scanning/results_table_model.h"
#include "scanning/wifi_scan_test.h"

#include <QPersistentModelIndex>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

scan::ScanedResultInfo record(const char* bssid, const char* ssid, int rssi, std::int64_t utilization)
{
    scan::ScanedResultInfo r;
    r.bssid = QString::fromLatin1(bssid);
    r.ssid = QString::fromLatin1(ssid);
    r.rssi = rssi;
    r.channelUtilization = utilization;
    return r;
}

class ResultsTableItemModelTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        test_->scanedData1 = {record("A", "bravo", -60, 0), record("B", "Alpha", -40, 37), record("C", "charlie", 0, -1)};
        table_.setCurrentTest(test_);
    }

    QStringList headers() const
    {
        QStringList titles;
        for (int c = 0; c < model_.columnCount(); ++c)
            titles << model_.headerData(c, Qt::Horizontal, scanning::ResultsTableItemModel::IdentifierRole).toString();
        return titles;
    }

    QString cell(int row, const char* identifier, int role = Qt::DisplayRole) const
    {
        return model_.data(model_.index(row, model_.columnOf(QLatin1String(identifier))), role).toString();
    }

    core::MemorySettings settings_;
    std::shared_ptr<scanning::WiFiScanTest> test_ = std::make_shared<scanning::WiFiScanTest>();
    scanning::ResultsTableModel table_{settings_};
    scanning::ResultsTableItemModel model_{table_};
};

// A settings file gives back a switch stored as a boolean as the text "true".
TEST_F(ResultsTableItemModelTest, VisibilityReadBackAsTextShowsTheColumn)
{
    EXPECT_EQ(headers(), (QStringList{"checkbox", "ssid", "bssid"}));
    const struct {
        QVariant stored;
        bool shown;
    } cases[] = {{QStringLiteral("true"), true}, {QStringLiteral("1"), true}, {true, true},
                 {QStringLiteral("false"), false}, {QStringLiteral("0"), false}};
    for (const auto& c : cases) {
        settings_.setValue(QStringLiteral("rssiColumnVisible"), c.stored);
        table_.updateTableColumnsView();
        EXPECT_EQ(model_.columnOf(QStringLiteral("rssi")) >= 0, c.shown) << c.stored.toString().toStdString();
        EXPECT_EQ(table_.isColumnHidden(QStringLiteral("rssi")), !c.shown);
    }
}

TEST_F(ResultsTableItemModelTest, ToggleMovesOneColumnInOrOutWithModelSignals)
{
    settings_.setValue(QStringLiteral("rssiColumnVisible"), QStringLiteral("true"));
    settings_.setValue(QStringLiteral("channelUtilizationColumnVisible"), QStringLiteral("true"));
    table_.updateTableColumnsView();
    ASSERT_EQ(headers(), (QStringList{"checkbox", "ssid", "bssid", "rssi", "channelUtilization"}));

    QSignalSpy removed(&model_, &QAbstractItemModel::columnsRemoved);
    QSignalSpy inserted(&model_, &QAbstractItemModel::columnsInserted);
    table_.toggleColumn(QStringLiteral("rssi"));
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed.at(0).at(1).toInt(), 3);
    EXPECT_EQ(headers(), (QStringList{"checkbox", "ssid", "bssid", "channelUtilization"}));
    EXPECT_EQ(settings_.value(QStringLiteral("rssiColumnVisible")), QVariant(false));
    table_.toggleColumn(QStringLiteral("rssi"));
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_EQ(inserted.at(0).at(1).toInt(), 3);
    EXPECT_EQ(model_.headerData(3, Qt::Horizontal).toString(), QStringLiteral("Signal"));
    EXPECT_EQ(settings_.value(QStringLiteral("rssiColumnVisible")), QVariant(true));
    // The name column cannot be hidden, and the join column is never in the header menu.
    table_.toggleColumn(QStringLiteral("ssid"));
    EXPECT_EQ(model_.columnOf(QStringLiteral("ssid")), 1);
    EXPECT_FALSE(scan::record_columns::headerMenuColumns().contains(QStringLiteral("join")));
}

TEST_F(ResultsTableItemModelTest, CellsUseTheDisplayTransformersAndSortValuesStayRaw)
{
    settings_.setValue(QStringLiteral("rssiColumnVisible"), true);
    settings_.setValue(QStringLiteral("channelUtilizationColumnVisible"), true);
    table_.updateTableColumnsView();
    EXPECT_EQ(cell(0, "rssi"), QStringLiteral("-60 dBm"));
    // No measurement and 0 % both show an empty cell; the export would print zero per cent.
    EXPECT_EQ(cell(2, "rssi"), QString());
    EXPECT_EQ(cell(0, "channelUtilization"), QString());
    EXPECT_EQ(cell(1, "channelUtilization"), QStringLiteral("37%"));
    EXPECT_EQ(model_.data(model_.index(0, model_.columnOf(QStringLiteral("rssi"))), scanning::ResultsTableItemModel::SortValueRole),
              QVariant(-60));
    EXPECT_FALSE(model_.data(model_.index(0, 0)).isValid());
}

// The images name what the cell means; only an open network gets the open lock.
TEST_F(ResultsTableItemModelTest, SignalSecurityAndJoinCellsNameTheirImages)
{
    settings_.setValue(QStringLiteral("rssiColumnVisible"), true);
    settings_.setValue(QStringLiteral("securityColumnVisible"), true);
    settings_.setValue(QStringLiteral("joinColumnVisible"), true);
    test_->scanedData1[0].securityMode = 4;
    table_.updateTableColumnsView();
    const int image = scanning::ResultsTableItemModel::ImageRole;
    EXPECT_EQ(cell(0, "rssi", image), QStringLiteral("wifi-signal"));
    EXPECT_EQ(cell(0, "security", image), QStringLiteral("lock"));
    EXPECT_EQ(cell(1, "security", image), QStringLiteral("unlock"));
    EXPECT_EQ(cell(1, "join", image), QStringLiteral("join"));
    EXPECT_EQ(cell(1, "ssid", image), QString());
}

TEST_F(ResultsTableItemModelTest, CheckColumnTicksThePlotSelection)
{
    table_.setSelectedBssids({QStringLiteral("A")});
    const QModelIndex alpha = model_.index(1, model_.columnOf(QStringLiteral("checkbox")));
    EXPECT_TRUE(model_.flags(alpha).testFlag(Qt::ItemIsUserCheckable));
    EXPECT_EQ(model_.data(alpha, Qt::CheckStateRole), QVariant(Qt::Unchecked));
    EXPECT_EQ(model_.data(alpha, Qt::AccessibleTextRole).toString(), QStringLiteral("Not plotted"));
    QSignalSpy changed(&model_, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model_.setData(alpha, Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(table_.selectedBssids(), (QStringList{"A", "B"}));
    EXPECT_EQ(model_.data(alpha, Qt::CheckStateRole), QVariant(Qt::Checked));
    EXPECT_EQ(model_.data(alpha, Qt::AccessibleTextRole).toString(), QStringLiteral("Plotted"));
    EXPECT_FALSE(model_.setData(model_.index(1, model_.columnOf(QStringLiteral("ssid"))), Qt::Checked, Qt::CheckStateRole));
}

TEST_F(ResultsTableItemModelTest, SortMovesRowsAndRemembersTheColumnForLaterScans)
{
    const QPersistentModelIndex charlie = model_.index(2, 1);
    QSignalSpy reset(&model_, &QAbstractItemModel::modelReset);
    model_.sort(model_.columnOf(QStringLiteral("ssid")), Qt::DescendingOrder);
    EXPECT_EQ(cell(0, "ssid") + cell(1, "ssid") + cell(2, "ssid"), QStringLiteral("charliebravoAlpha"));
    EXPECT_EQ(charlie.row(), 0);
    EXPECT_TRUE(reset.isEmpty());
    EXPECT_EQ(table_.lastIdentifier(), QStringLiteral("ssid"));
    EXPECT_FALSE(table_.sortAscending());

    model_.sort(model_.columnOf(QStringLiteral("checkbox")), Qt::AscendingOrder);
    EXPECT_EQ(cell(0, "ssid"), QStringLiteral("charlie"));

    test_->scanedData1.append(record("D", "delta", -50, 1));
    table_.updateView(test_);
    EXPECT_FALSE(reset.isEmpty());
    EXPECT_EQ(model_.rowCount(), 4);
    EXPECT_EQ(cell(0, "ssid"), QStringLiteral("delta"));
}

} // namespace
