#include "platform/linux/rfkill.h"

#include <QCoreApplication>
#include <QDir>
#include <QDeadlineTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <linux/rfkill.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

QByteArray eventBytes(std::uint32_t index, std::uint8_t type, std::uint8_t op, bool soft, bool hard, int size = 8)
{
    rfkill_event_ext raw{};
    raw.idx = index;
    raw.type = type;
    raw.op = op;
    raw.soft = soft ? 1 : 0;
    raw.hard = hard ? 1 : 0;
    return QByteArray(reinterpret_cast<const char*>(&raw), size);
}

TEST(Rfkill, ParsesOriginalAndExtendedEventsOnly)
{
    const auto original = platform::rfkill::parseEvent(eventBytes(7, RFKILL_TYPE_WLAN, RFKILL_OP_CHANGE, true, false));
    ASSERT_TRUE(original);
    EXPECT_EQ(original->index, 7u);
    EXPECT_TRUE(original->soft);
    EXPECT_FALSE(original->hard);
    EXPECT_TRUE(platform::rfkill::parseEvent(eventBytes(7, RFKILL_TYPE_WLAN, RFKILL_OP_ADD, false, true, 9)));
    EXPECT_FALSE(platform::rfkill::parseEvent(eventBytes(7, RFKILL_TYPE_WLAN, RFKILL_OP_ADD, false, true, 7)));
}

TEST(Rfkill, TableFollowsWifiSwitchesAndIgnoresOthers)
{
    platform::rfkill::SwitchTable table;
    EXPECT_EQ(table.wlanPowerOn(), std::nullopt);
    struct Step {
        platform::rfkill::Event event;
        bool changed;
        std::optional<bool> all;
        std::optional<bool> second;
    };
    const Step steps[] = {
        {{1, RFKILL_TYPE_WLAN, RFKILL_OP_ADD, false, false}, true, true, std::nullopt},
        {{2, RFKILL_TYPE_WLAN, RFKILL_OP_ADD, false, false}, true, true, true},
        {{3, RFKILL_TYPE_BLUETOOTH, RFKILL_OP_ADD, true, false}, false, true, true},
        {{2, RFKILL_TYPE_WLAN, RFKILL_OP_CHANGE, false, true}, true, false, false},
        {{2, RFKILL_TYPE_WLAN, RFKILL_OP_CHANGE, false, true}, false, false, false},
        {{0, RFKILL_TYPE_WLAN, RFKILL_OP_CHANGE_ALL, false, false}, false, false, false},
        {{2, RFKILL_TYPE_WLAN, RFKILL_OP_DEL, false, true}, true, true, std::nullopt},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(static_cast<int>(step.event.index) * 10 + step.event.op);
        EXPECT_EQ(table.apply(step.event), step.changed);
        EXPECT_EQ(table.wlanPowerOn(), step.all);
        EXPECT_EQ(table.wlanPowerOn(2), step.second);
    }
}

TEST(Rfkill, FindsSwitchOfWiphyInSysfs)
{
    QTemporaryDir root;
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("class/ieee80211/phy0/rfkill4")));
    EXPECT_EQ(platform::rfkill::indexForWiphy(QStringLiteral("phy0"), root.path()), 4u);
    EXPECT_EQ(platform::rfkill::indexForWiphy(QStringLiteral("phy1"), root.path()), std::nullopt);
    EXPECT_EQ(platform::rfkill::indexForWiphy(QStringLiteral("../phy0"), root.path()), std::nullopt);
}

TEST(Rfkill, MonitorReadsInitialListAndNotifiesChanges)
{
    static int argc = 1;
    static char name[] = "rfkill_tests";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr)
        new QCoreApplication(argc, argv);

    int fds[2];
    // Sequenced packets keep one event per read, as /dev/rfkill does.
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0, fds), 0);
    const auto send = [&](const QByteArray& bytes) {
        ASSERT_EQ(::write(fds[1], bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
    };
    send(eventBytes(0, RFKILL_TYPE_WLAN, RFKILL_OP_ADD, false, false));
    send(QByteArray("xyz"));
    platform::rfkill::RfkillMonitor monitor(fds[0]);
    EXPECT_EQ(monitor.wlanPowerOn(), true);

    int changes = 0;
    QObject::connect(&monitor, &platform::rfkill::RfkillMonitor::wlanPowerChanged, [&changes] { ++changes; });
    send(eventBytes(0, RFKILL_TYPE_WLAN, RFKILL_OP_CHANGE, true, false));
    for (QDeadlineTimer deadline(2000); changes == 0 && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(monitor.wlanPowerOn(0), false);
    ::close(fds[1]);
}

TEST(Rfkill, SoftBlockFailsAsValueWithoutDevice)
{
    const auto error = platform::rfkill::RfkillMonitor::setWlanSoftBlock(true, QStringLiteral("/nonexistent/rfkill"));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "rfkill");
    EXPECT_FALSE(error->description.isEmpty());
}

} // namespace
