#include "core/csv_cell.h"
#include "core/memory_settings.h"
#include "core/settings_overlay.h"
#include "core/units.h"

#include <gtest/gtest.h>

namespace {

TEST(SettingSwitch, ReadsEveryFormAStoreHandsBack)
{
    for (const QVariant& on : {QVariant(true), QVariant(QStringLiteral("true")), QVariant(1), QVariant(QStringLiteral("1")),
                               QVariant(1.0), QVariant(QStringLiteral("TRUE"))})
        EXPECT_TRUE(core::settingIsOn(on)) << on.toString().toStdString();
    for (const QVariant& off : {QVariant(false), QVariant(QStringLiteral("false")), QVariant(0), QVariant(QStringLiteral("0")),
                                QVariant(), QVariant(QStringLiteral("yes please")), QVariant(2)})
        EXPECT_FALSE(core::settingIsOn(off)) << off.toString().toStdString();
}

TEST(SettingsOverlay, KeepsItsKeysInMemoryAndPassesTheRestThrough)
{
    core::MemorySettings base({{QStringLiteral("mergeScanResults"), 0}, {QStringLiteral("TOTAL_NETWORKS"), 3}});
    core::SettingsOverlay overlay(base, {{QStringLiteral("mergeScanResults"), 1}});

    EXPECT_EQ(overlay.value(QStringLiteral("mergeScanResults")).toInt(), 1);
    overlay.setValue(QStringLiteral("mergeScanResults"), 0);
    EXPECT_EQ(overlay.value(QStringLiteral("mergeScanResults")).toInt(), 0);
    overlay.setValue(QStringLiteral("TOTAL_NETWORKS"), 7);

    EXPECT_EQ(base.value(QStringLiteral("mergeScanResults")).toInt(), 0);
    EXPECT_EQ(base.value(QStringLiteral("TOTAL_NETWORKS")).toInt(), 7);
}

TEST(Units, BandsAndWidthsAgreeEverywhere)
{
    EXPECT_EQ(core::bandForChannel(14), core::ChannelBand::Band2GHz);
    EXPECT_EQ(core::bandForChannel(15), core::ChannelBand::Band5GHz);
    EXPECT_EQ(core::bandForChannel(0), core::ChannelBand::Unknown);
    EXPECT_EQ(core::bandGhz(core::ChannelBand::Unknown, 36), 5.0);
    EXPECT_EQ(core::bandGhz(core::ChannelBand::Unknown, 11), 2.4);
    EXPECT_EQ(core::bandGhz(core::ChannelBand::Band5GHz, 11), 5.0);
    for (const int mhz : {20, 40, 80, 160})
        EXPECT_EQ(core::widthMhz(core::widthCodeForMhz(mhz)), mhz);
    EXPECT_EQ(core::widthMhz(core::ChannelWidthCode::Unknown), 0);
}

TEST(CsvCell, KeepsHostileTextInOneCell)
{
    const struct {
        const char16_t* text;
        const char16_t* cell;
    } cases[] = {
        {u"Cafe", u"Cafe"},
        {u"a,b", u"\"a,b\""},
        {u"say \"hi\"", u"\"say \"\"hi\"\"\""},
        {u"two\nlines", u"\"two\nlines\""},
        {u"=HYPERLINK(\"x\")", u"\"'=HYPERLINK(\"\"x\"\")\""},
        {u"-45", u"\"'-45\""},
        {u"@home", u"\"'@home\""},
        {u"", u""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(core::csvCell(QString::fromUtf16(c.text)), QString::fromUtf16(c.cell));
    EXPECT_EQ(core::csvCell(QStringLiteral("x"), core::CsvQuoting::Always), QStringLiteral("\"x\""));
}

} // namespace
