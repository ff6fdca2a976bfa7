#include "listener_test_support.h"
#include "testsupport/stub_wireless_interface.h"

#include "sensor/host_address.h"
#include "sensor/sensor_listener_controller.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

platform::InterfaceSnapshot linkSnapshot(const QString& ssid, bool withChannel)
{
    platform::InterfaceSnapshot snapshot;
    snapshot.bssid = QStringLiteral("aa:bb:cc:dd:ee:ff");
    snapshot.ssid = ssid;
    snapshot.rssiValue = -55;
    snapshot.noiseMeasurement = -92;
    if (withChannel)
        snapshot.wlanChannel = platform::WlanChannel{36, platform::ChannelBand::Band5GHz, {}};
    return snapshot;
}

// What the log and the console received for one line.
struct Outcome {
    QStringList rows;
    QStringList diagnostics;
};

Outcome feed(sensor::SensorListenerController& controller, const QString& line)
{
    QSignalSpy rows(&controller, &sensor::SensorListenerController::logLineAppended);
    QSignalSpy diagnostics(&controller, &sensor::SensorListenerController::diagnostic);
    controller.appendSensorData(line);
    Outcome outcome;
    for (const auto& row : rows)
        outcome.rows << row.at(0).toString();
    for (const auto& message : diagnostics)
        outcome.diagnostics << message.at(0).toString();
    return outcome;
}

class SensorLineTest : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
};

TEST_F(SensorLineTest, LinesBecomeRowsOrAreIgnored)
{
    const auto link = std::make_shared<testsupport::StubWirelessInterface>(linkSnapshot(QStringLiteral("Home"), true));
    sensor::SensorListenerController controller(link);
    struct Case {
        const char* line;
        const char* row;  // nullptr: nothing logged
    };
    const Case cases[] = {
        {"1700000000123,1,51.5,-0.12,35.26,5,8", "11-14-2023 10:13:20,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,51.50000,-0.12000,35.3"},
        {"0x18bcfe56800,7,a,b", "[11-14-2023 10:13:20.0000] Unknown : a,b"},
        {"017,9,z", "[01-01-1970 12:00:00.0150] Unknown : z"},
        {"1700000000123,9.9,a", "[11-14-2023 10:13:20.1230] Unknown : a"},
        {"1700000000123,4.9,a", nullptr},
        // Lenient numbers: a text without a numeric prefix reads as 0.
        {"abc,1,x,2.5e1y,z,w,v", "01-01-1970 12:00:00,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,0.00000,25.00000,0.0"},
        {"1700000000123,3,1.0", nullptr},
        {"1700000000123,3,1,2,3", nullptr},
        {"1700000000123,2,10,12", nullptr},
        {"1700000000123,4,1,2,3", nullptr},
        {"1,2", nullptr},
        {"", nullptr},
        {"\x01\x02\x7f", nullptr},
        // Past the year 9999 no date holds the time; the reading is kept with the count it carried.
        {"253402300800000,7,a", "[253402300800000] Unknown : a"},
        {"99999999999999999999999,7,a", "[18446744073709551615] Unknown : a"},
        {"253402300800000,1,1,2,3,4,5", ",aa:bb:cc:dd:ee:ff,Home,-55,-92,36,1.00000,2.00000,3.0"},
        // Exact halves round to even, as printf does; the nearest double decides the others.
        {"0,1,0.000005,-0.000015,432.25,5,8", "01-01-1970 12:00:00,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,0.00001,-0.00002,432.2"},
        {"0,1,1,2,-0.25,5,8", "01-01-1970 12:00:00,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,1.00000,2.00000,-0.2"},
        {"0,1,1,2,0.35,5,8", "01-01-1970 12:00:00,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,1.00000,2.00000,0.3"},
        // Values after the first start CSV cells of the saved log: formulas stay text.
        {"0,7,=a,=1+2,@b,ok", "[01-01-1970 12:00:00.0000] Unknown : =a,\"'=1+2\",\"'@b\",ok"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = feed(controller, QString::fromLatin1(c.line));
        if (c.row == nullptr)
            EXPECT_TRUE(outcome.rows.isEmpty()) << c.line;
        else
            EXPECT_EQ(outcome.rows, QStringList{QString::fromLatin1(c.row)}) << c.line;
    }
    // Four GPS values pass the length check, yet a fix needs five: it fails like a malformed line, silently.
    const Outcome fourValues = feed(controller, QStringLiteral("1700000000123,1,51.5,-0.12,35.2,5"));
    EXPECT_TRUE(fourValues.rows.isEmpty());
    EXPECT_TRUE(fourValues.diagnostics.isEmpty());
}

TEST_F(SensorLineTest, GpsRowFollowsTheInterfaceGeneration)
{
    const QString line = QStringLiteral("1700000000123,1,1,2,3,4,5");
    struct Case {
        bool oldest;
        std::shared_ptr<testsupport::StubWirelessInterface> link;
        const char* row;
    };
    const Case cases[] = {
        {false, nullptr, "11-14-2023 10:13:20,,,0,0,0,1.00000,2.00000,3.0"},
        {true, nullptr, "11-14-2023 10:13:20,,,,,,1.00000,2.00000,3.0"},
        {false, std::make_shared<testsupport::StubWirelessInterface>(linkSnapshot(QStringLiteral("Cafe, \"Bar\""), false)),
         "11-14-2023 10:13:20,aa:bb:cc:dd:ee:ff,\"Cafe, \"\"Bar\"\"\",-55,-92,0,1.00000,2.00000,3.0"},
        {true, std::make_shared<testsupport::StubWirelessInterface>(linkSnapshot(QStringLiteral("Home"), false)),
         "11-14-2023 10:13:20,aa:bb:cc:dd:ee:ff,Home,-55,-92,,1.00000,2.00000,3.0"},
        {true, std::make_shared<testsupport::StubWirelessInterface>(linkSnapshot(QStringLiteral("Home"), true)),
         "11-14-2023 10:13:20,aa:bb:cc:dd:ee:ff,Home,-55,-92,36,1.00000,2.00000,3.0"},
    };
    for (const Case& c : cases) {
        const auto generation = c.oldest ? core::InterfaceGeneration::OldestRelease : core::InterfaceGeneration::Later;
        std::shared_ptr<testsupport::StubWirelessInterface> link;
        if (c.link)
            link = std::make_shared<testsupport::StubWirelessInterface>(c.link->snapshot(), generation);
        // Without an interface the controller's own generation decides; with one, the interface's.
        sensor::SensorListenerController controller(link, link ? core::InterfaceGeneration::Later : generation);
        EXPECT_EQ(feed(controller, line).rows, QStringList{QString::fromLatin1(c.row)}) << c.row;
    }
    platform::InterfaceSnapshot formula = linkSnapshot(QStringLiteral("=HYPERLINK(\"x\")"), true);
    formula.bssid = QStringLiteral("+aa");
    sensor::SensorListenerController guarded(std::make_shared<testsupport::StubWirelessInterface>(formula));
    EXPECT_EQ(feed(guarded, line).rows,
              QStringList{"11-14-2023 10:13:20,\"'+aa\",\"'=HYPERLINK(\"\"x\"\")\",-55,-92,36,1.00000,2.00000,3.0"});
}

TEST(HostAddress, FirstIpv4AddressThatIsNotLoopback)
{
    const std::pair<QStringList, const char*> cases[] = {
        {{}, ""},
        {{"127.0.0.1", "::1"}, "IP address not available"},
        {{"127.0.0.1", "fe80::1%eth0", "192.168.1.5", "10.0.0.1"}, "192.168.1.5"},
        {{"::ffff:10.0.0.1", "10.0.0.2"}, "10.0.0.2"},
        {{"1.2.3"}, "IP address not available"},
    };
    for (const auto& [addresses, ip] : cases)
        EXPECT_EQ(sensor::hostAddress(addresses), QLatin1String(ip)) << addresses.join(',').toStdString();
}

} // namespace

TEST(ListenerPortSetting, NumbersAndTheirTextsWithinThePortRange)
{
    const std::pair<QVariant, std::optional<int>> cases[] = {
        {5555, 5555},          {QStringLiteral(" 80 "), 80}, {0, 0},
        {65535, 65535},        {65536, std::nullopt},        {-1, std::nullopt},
        {QStringLiteral("5555x"), std::nullopt},             {QVariant(), std::nullopt},
    };
    for (const auto& [setting, port] : cases)
        EXPECT_EQ(sensor::SensorListenerController::portForSetting(setting), port) << setting.toString().toStdString();
}
