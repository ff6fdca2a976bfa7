#include "graphs/tests/graph_test_records.h"

#include "core/memory_settings.h"
#include "graphs/graph_view_tab_set.h"
#include "graphs/view/graph_image_file.h"
#include "graphs/view/graph_scenes.h"
#include "graphs/view/report_graph_images.h"

#include <QDir>
#include <QApplication>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class GraphImages : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "graph_view_tests";
        static char* argv[] = {name, nullptr};
        if (QCoreApplication::instance() == nullptr)
            new QApplication(argc, argv);
    }
};

TEST_F(GraphImages, ReportPicturesAreWrittenWholeAndNeverOverAForeignFile)
{
    core::MemorySettings settings;
    graphs::GraphViewTabSet tabs(graphs_test::builtInColours(), settings);
    graphs::view::ReportGraphImages images(tabs);
    tabs.addPlotToGraph(QStringLiteral("AA:00:00:00:00:01"), {graphs_test::network(QStringLiteral("AA:00:00:00:00:01"), 6, -40)});
    tabs.addPlotToGraph(QStringLiteral("AA:00:00:00:00:02"), {graphs_test::network(QStringLiteral("AA:00:00:00:00:02"), 36, -60)});
    images.refresh();

    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const scanning::ReportGraphs graphs = images.reportGraphs();
    // Somebody's own file of one of the names is there before the report.
    const QString foreign = folder.filePath(QStringLiteral("5ghzGRAPH.png"));
    {
        QFile file(foreign);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not ours");
    }
    EXPECT_TRUE(graphs.channels24GHz->saveGraphAsImageAtPath(folder.path()));
    EXPECT_TRUE(graphs.signalRank->saveGraphAsImageAtPath(folder.path()));
    EXPECT_FALSE(graphs.channels5GHz->saveGraphAsImageAtPath(folder.path()));
    EXPECT_TRUE(static_cast<graphs::view::GraphImageFile*>(graphs.channels5GHz)->lastError().contains(foreign));
    QFile kept(foreign);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), QByteArray("not ours"));

    // Our own picture may be written again (a second report in the same minute).
    EXPECT_TRUE(graphs.channels24GHz->saveGraphAsImageAtPath(folder.path()));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
              QStringList({"2-4ghzGRAPH.png", "5ghzGRAPH.png", "SSIDrankGRAPH.png"}));
    const QImage picture(folder.filePath(QStringLiteral("2-4ghzGRAPH.png")));
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(1100, 500));
    // The plot area's dark background is in the picture.
    EXPECT_EQ(picture.pixelColor(550, 250).red(), 29);

    // A folder that cannot be written gives a reason, not a crash.
    EXPECT_FALSE(graphs.signalRank->saveGraphAsImageAtPath(folder.filePath(QStringLiteral("missing/deeper"))));
    EXPECT_FALSE(static_cast<graphs::view::GraphImageFile*>(graphs.signalRank)->lastError().isEmpty());
}

TEST_F(GraphImages, ScenesFollowTheGridAndValueLabelSwitchesLive)
{
    core::MemorySettings settings;
    settings.setValue(QStringLiteral("showGridLinesOnGraph"), 1);
    settings.setValue(QStringLiteral("showRSSIValueOnGraph"), 0);
    graphs::GraphViewTabSet tabs(graphs_test::builtInColours(), settings);
    const QString bssid = QStringLiteral("AA:00:00:00:00:01");
    tabs.addPlotToGraph(bssid, {graphs_test::sample(bssid, -50, 0), graphs_test::sample(bssid, -55, 10)});
    const graphs::GraphTheme theme;
    const auto gridWidth = [&] { return graphs::view::channelScene(tabs.channels24GHz(), theme).axes[0].majorGrid.width; };
    const auto historyLabels = [&] {
        const plot::Graph scene = graphs::view::historyScene(tabs.signalHistory(), theme);
        return std::get<plot::ScatterPlot>(scene.plots.at(0)).labels.size();
    };
    EXPECT_EQ(gridWidth(), 0.5);
    EXPECT_EQ(historyLabels(), 0);

    settings.setValue(QStringLiteral("showGridLinesOnGraph"), 0);
    settings.setValue(QStringLiteral("showRSSIValueOnGraph"), 1);
    tabs.refreshSettings();
    EXPECT_EQ(gridWidth(), 0.0);
    const plot::Graph history = graphs::view::historyScene(tabs.signalHistory(), theme);
    const plot::ScatterPlot& line = std::get<plot::ScatterPlot>(history.plots.at(0));
    ASSERT_EQ(line.labels.size(), 2);
    EXPECT_TRUE(line.symbol.has_value());
    EXPECT_EQ(line.labels[0].text, QStringLiteral("-50"));
    EXPECT_EQ(line.labels[0].alignment, Qt::AlignLeft);   // the newest leans inwards
    EXPECT_EQ(line.labels[1].alignment, Qt::AlignRight);
}

} // namespace
