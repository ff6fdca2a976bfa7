#include "graphs/color_codes_manager.h"
#include "graphs/colour_code.h"
#include "scan/scaned_result_info.h"

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

scan::ScanedResultInfo record(const QString& bssid, int channel)
{
    scan::ScanedResultInfo r;
    r.bssid = bssid;
    r.originalChannel = channel;
    return r;
}

QString writePlist(const QTemporaryDir& dir, const QByteArray& groups)
{
    const QString path = dir.filePath(QStringLiteral("colours.plist"));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><array>" + groups + "</array></plist>");
    return path;
}

} // namespace

TEST(ColorCodesManager, ChannelsMapToTheirGroups)
{
    struct Case { int channel; const char* group; };
    const Case cases[] = {
        {-3, "1-4"}, {0, "1-4"}, {4, "1-4"}, {5, "5-8"}, {8, "5-8"}, {9, "9-14"}, {14, "9-14"},
        {15, "112-116-120"}, {33, "112-116-120"}, {34, "34-36-38"}, {38, "34-36-38"}, {39, "40-42-44"},
        {44, "40-42-44"}, {45, "112-116-120"}, {46, "46-48-52"}, {53, "112-116-120"}, {64, "56-60-64"},
        {100, "100-104-108"}, {109, "112-116-120"}, {132, "124-128-132"}, {140, "136-140"},
        {144, "112-116-120"}, {149, "149"}, {151, "112-116-120"}, {153, "153"}, {165, "165"},
        {166, "112-116-120"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(graphs::ColorCodesManager::getKeyForColorCodeChannels(c.channel), QLatin1String(c.group)) << c.channel;
}

TEST(ColorCodesManager, GroupsDealColoursRoundRobinAndKeepThem)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    graphs::ColorCodesManager manager(writePlist(dir,
        "<dict><key>1-4</key><array><string>255,0,0</string><string>0,255,0</string><string>0,0,255</string></array></dict>"
        "<dict><key>149</key><array><string>51,102</string><string>x</string></array></dict>"
        "<dict><key>153</key><array/></dict>"));
    EXPECT_EQ(manager.groupCount(), 3);

    const scan::ScanedResultInfo unnamed = record(QStringLiteral("  "), 1);
    EXPECT_EQ(manager.getColorCode(&unnamed), nullptr);
    const char* const dealt[] = {"1.000000, 0.000000, 0.000000", "0.000000, 1.000000, 0.000000",
                                 "0.000000, 0.000000, 1.000000", "1.000000, 0.000000, 0.000000"};
    for (int i = 0; i < 4; ++i) {
        const scan::ScanedResultInfo r = record(QStringLiteral("AA:00:00:00:00:0%1").arg(i), i + 1);
        EXPECT_EQ(manager.getColorCode(&r)->description(), QLatin1String(dealt[i])) << i;
    }
    const scan::ScanedResultInfo again = record(QStringLiteral("AA:00:00:00:00:00"), 4);
    EXPECT_EQ(manager.getColorCode(&again)->description(), QLatin1String(dealt[0]));
    EXPECT_EQ(manager.groupForKey(QStringLiteral("1-4-"))->currentIndex(), 1);

    // Short or unreadable colour texts fill the missing components with 0; a moved BSSID gets
    // a colour in its new group too.
    const scan::ScanedResultInfo moved = record(QStringLiteral("AA:00:00:00:00:00"), 149);
    EXPECT_EQ(manager.getColorCode(&moved)->description(), QStringLiteral("0.200000, 0.400000, 0.000000"));

    const scan::ScanedResultInfo emptyGroup = record(QStringLiteral("AA:00:00:00:00:05"), 153);
    const scan::ScanedResultInfo missingGroup = record(QStringLiteral("AA:00:00:00:00:06"), 36);
    EXPECT_EQ(manager.getColorCode(&emptyGroup), nullptr);
    EXPECT_EQ(manager.getColorCode(&missingGroup), nullptr);
    EXPECT_EQ(manager.getColorCode(nullptr), nullptr);

    EXPECT_EQ(graphs::ColorCodesManager(dir.filePath(QStringLiteral("missing.plist"))).groupCount(), 0);
    EXPECT_EQ(graphs::ColorCodesManager(writePlist(dir, "<dict><key>1-4</key")).groupCount(), 0);
}

TEST(ColorCodesManager, BuiltInTableHasDistinctColoursForEveryGroup)
{
    graphs::ColorCodesManager& shared = graphs::ColorCodesManager::sharedColorManager();
    const char* const groups[] = {"1-4", "5-8", "9-14", "34-36-38", "40-42-44", "46-48-52", "56-60-64", "100-104-108",
                                  "112-116-120", "124-128-132", "136-140", "149", "153", "157", "161", "165"};
    EXPECT_EQ(shared.groupCount(), 16);
    for (const char* group : groups) {
        const auto colours = shared.groupForKey(QLatin1String(group) + QLatin1Char('-'));
        ASSERT_NE(colours, nullptr) << group;
        const auto codes = colours->colorCodes();
        EXPECT_GE(codes.size(), 6u) << group;
        EXPECT_LE(codes.size(), 10u) << group;
        QSet<QString> distinct;
        for (const graphs::ColourCodePtr& code : codes)
            distinct.insert(code->description());
        EXPECT_EQ(static_cast<std::size_t>(distinct.size()), codes.size()) << group;
    }
}

TEST(ColourCode, KeysTakeThePaletteInTurnAndKeepTheirColour)
{
    const graphs::ColourCodePtr first = graphs::ColourCode::getColourCodeForKey(QStringLiteral("key-0"));
    EXPECT_EQ(first->description(), QStringLiteral("1.000000, 0.949020, 0.000000"));
    QSet<QString> palette{first->description()};
    for (int i = 1; i < 60; ++i)
        palette.insert(graphs::ColourCode::getColourCodeForKey(QStringLiteral("key-%1").arg(i))->description());
    EXPECT_EQ(palette.size(), 60);
    EXPECT_EQ(graphs::ColourCode::getColourCodeForKey(QStringLiteral("key-60")), first);
    EXPECT_EQ(graphs::ColourCode::getColourCodeForKey(QStringLiteral("key-0")), first);
}
