#include "scanning/filter_criteria.h"

#include <gtest/gtest.h>

namespace {

struct ConditionCase {
    const char* name;
    const char* ssid;
    const char* channel;
    int band;
    int first, second, third;
    const char* rssi;
    int weakOrStrong;
    const char* expected;
};

class ConditionTest : public ::testing::TestWithParam<ConditionCase> {};

TEST_P(ConditionTest, BuildsTheConditionFragmentByFragment)
{
    const ConditionCase& c = GetParam();
    scanning::FilterCriteria filter;
    filter.ssidForFilterValue = QString::fromUtf8(c.ssid);
    filter.channelForFilterValue = QString::fromUtf8(c.channel);
    filter.channelBandItem = c.band;
    filter.firstAndOrItem = c.first;
    filter.secondAndOrItem = c.second;
    filter.thirdAndOrItem = c.third;
    filter.rssiValueForFilter = QString::fromUtf8(c.rssi);
    filter.rssiWeakOrStrongItem = c.weakOrStrong;
    filter.userDidClickedApplyFilterButton();
    EXPECT_EQ(filter.filterCriteria.toStdString(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Filter, ConditionTest,
    ::testing::Values(
        ConditionCase{"BandAlone", "", "", 2, 0, 0, 0, "", 0, "channelBond=5 "},
        ConditionCase{"AnyAndEmptyAddNothing", "Any", "Any", 0, 0, 0, 0, "", 0, ""},
        ConditionCase{"SignalZeroAddsNothing", "", "", 0, 0, 0, 0, "0", 0, ""},
        ConditionCase{"ChannelLeadsWithoutWord", "Any", "11", 1, 0, 0, 0, "", 0, "originalChannel=11  and channelBond=2.4 "},
        ConditionCase{"StrongerAlone", "", "", 0, 0, 0, 1, "-70", 0, "rssi > -70 "},
        ConditionCase{"WeakerAlone", "Any", "Any", 0, 1, 1, 1, "-80", 1, "rssi < -80 "},
        ConditionCase{"NameOrChannel", "lab", "6", 0, 1, 0, 0, "", 0, "SSID like '%lab%'  or originalChannel=6 "},
        ConditionCase{"QuotedNameShownAsTyped", "O'Brien", "", 0, 0, 0, 0, "", 0, "SSID like '%O'Brien%' "},
        ConditionCase{"WeakerChained", "cafe", "", 0, 0, 0, 1, "-70", 1, "SSID like '%cafe%'  or rssi < -70 "},
        ConditionCase{"FullChainUnparenthesised", "x", "36", 2, 1, 0, 1, "-60", 0,
                      "SSID like '%x%'  or originalChannel=36  and channelBond=5  or rssi > -60 "}),
    [](const ::testing::TestParamInfo<ConditionCase>& param) { return std::string(param.param.name); });

TEST(FilterCriteria, RescanOnlyWhenTheConditionChanges)
{
    scanning::FilterCriteria filter;
    EXPECT_FALSE(filter.userDidClickedApplyFilterButton());
    EXPECT_EQ(filter.changeFilterButtonState().title, QStringLiteral("Apply Filter"));
    EXPECT_FALSE(filter.changeFilterButtonState().highlighted);

    filter.ssidForFilterValue = QStringLiteral("lab");
    EXPECT_TRUE(filter.userDidClickedApplyFilterButton());
    EXPECT_FALSE(filter.userDidClickedApplyFilterButton());
    EXPECT_EQ(filter.changeFilterButtonState().title, QStringLiteral("Filter Applied"));
    EXPECT_TRUE(filter.changeFilterButtonState().highlighted);

    // A weaker-than choice sticks when the pop-up reports no usable item afterwards.
    filter.rssiValueForFilter = QStringLiteral("-50");
    filter.rssiWeakOrStrongItem = 1;
    filter.userDidClickedApplyFilterButton();
    filter.rssiWeakOrStrongItem = -1;
    EXPECT_FALSE(filter.userDidClickedApplyFilterButton());
    EXPECT_FALSE(filter.rssiStrongOrWeek);
}

TEST(FilterCriteria, OnlyNumbersPassInTheChannelAndSignalFields)
{
    const struct {
        const char* channel;
        const char* rssi;
        const char* error;
    } cases[] = {
        {"six", "", "The channel must be a whole number, not \"six\"."},
        {"6 or 1=1", "", "The channel must be a whole number, not \"6 or 1=1\"."},
        {"", "-70dB", "The signal must be a whole number of dBm, not \"-70dB\"."},
        {"Any", "-70) or (1=1", "The signal must be a whole number of dBm, not \"-70) or (1=1\"."},
    };
    for (const auto& c : cases) {
        scanning::FilterCriteria filter;
        filter.ssidForFilterValue = QStringLiteral("lab");
        ASSERT_TRUE(filter.userDidClickedApplyFilterButton());
        filter.channelForFilterValue = QString::fromUtf8(c.channel);
        filter.rssiValueForFilter = QString::fromUtf8(c.rssi);
        EXPECT_FALSE(filter.userDidClickedApplyFilterButton()) << c.channel << c.rssi;
        EXPECT_EQ(filter.inputError.toStdString(), c.error);
        // The refused input leaves the condition that was in force.
        EXPECT_EQ(filter.filterCriteria, QStringLiteral("SSID like '%lab%' "));
    }
}

TEST(FilterCriteria, ClearEmptiesFieldsAndAsksForAScanOnlyAfterACondition)
{
    scanning::FilterCriteria filter;
    filter.ssidForFilterValue = QStringLiteral("lab");
    filter.channelForFilterValue = QStringLiteral("6");
    filter.rssiValueForFilter = QStringLiteral("-70");
    filter.channelBandItem = 2;
    filter.thirdAndOrItem = 1;
    filter.userDidClickedApplyFilterButton();

    EXPECT_TRUE(filter.clearFilter());
    EXPECT_TRUE(filter.filterCriteria.isEmpty());
    EXPECT_TRUE(filter.ssidForFilterValue.isEmpty());
    EXPECT_TRUE(filter.channelForFilterValue.isEmpty());
    EXPECT_TRUE(filter.rssiValueForFilter.isEmpty());
    EXPECT_EQ(filter.channelBandItem, 0);
    EXPECT_EQ(filter.thirdAndOrItem, 1);
    EXPECT_EQ(filter.changeFilterButtonState().title, QStringLiteral("Apply Filter"));

    EXPECT_FALSE(filter.clearFilter());
}

TEST(FilterCriteria, CompletionMatchesPrefixIgnoringCaseAndSortsPlainly)
{
    scanning::FilterCriteria filter;
    for (const char* name : {"chalet", "Rich", "Chez", "chalet", "Lab"})
        filter.addSSID(QString::fromUtf8(name));
    for (const char* channel : {"6", "36", "11", "6"})
        filter.addChannel(QString::fromUtf8(channel));

    EXPECT_EQ(filter.completions(QStringLiteral("ssidFilterField"), QStringLiteral("ch")),
              (QStringList{QStringLiteral("Chez"), QStringLiteral("chalet")}));
    EXPECT_EQ(filter.completions(QStringLiteral("channelFilterField"), QStringLiteral("")),
              (QStringList{QStringLiteral("11"), QStringLiteral("36"), QStringLiteral("6")}));
    EXPECT_EQ(filter.completions(QStringLiteral("channelFilterField"), QStringLiteral("ch")), QStringList());
    EXPECT_EQ(filter.sortedSSIDs(),
              (QStringList{QStringLiteral("Chez"), QStringLiteral("Lab"), QStringLiteral("Rich"), QStringLiteral("chalet")}));
}

TEST(FilterCriteria, CompletionDoesNotReenter)
{
    scanning::FilterCriteria filter;
    int completions = 0;
    filter.controlTextDidChange([&] {
        ++completions;
        filter.controlTextDidChange([&] { ++completions; });
    });
    EXPECT_EQ(completions, 1);

    filter.doCommandBySelector([&] {
        filter.controlTextDidChange([&] { ++completions; });
        return true;
    });
    EXPECT_EQ(completions, 1);
    filter.controlTextDidChange([&] { ++completions; });
    EXPECT_EQ(completions, 2);
}

}  // namespace
