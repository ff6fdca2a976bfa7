#include "app/events/scanner_events.h"

#include "core/memory_settings.h"
#include "platform/api/command_runner.h"
#include "scanning/scan_database.h"
#include "scanning/scan_test_driver.h"
#include "testsupport/fake_timer_source.h"
#include "testsupport/stub_wireless_interface.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

class NoTool : public platform::CommandRunner {
public:
    platform::CommandOutput runShellCommand(const QString&) override { return {}; }
};

// Launch is announced from a thread of its own, as the program does it; the scan timer is
// held and released through the same object.
TEST(ScannerEvents, LaunchStartsTheFirstTestAndTheTimerFollowsPauseAndResume)
{
    static int argc = 1;
    static char name[] = "app_events_tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);

    QTemporaryDir folder;
    testsupport::ManualClock clock{QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC)};
    testsupport::FakeTimerSource timers{clock};
    core::MemorySettings settings;
    scanning::ScanDatabase database{folder.filePath(QStringLiteral("Database.sqlite"))};
    database.updateDatabase();
    NoTool tool;
    scanning::ScanTestDriver driver{std::make_shared<testsupport::StubWirelessInterface>(), database, settings,
                                    timers, tool, QStringLiteral("skyvane-cli"), {}};
    app::ApplicationEvents events;
    app::connectScanTestDriver(events, driver);

    std::unique_ptr<QThread> announcer(QThread::create([&events] { emit events.appFinishLaunching(); }));
    announcer->start();
    announcer->wait();
    QCoreApplication::processEvents();
    timers.advance(1500ms);
    driver.waitForBackgroundWork();
    EXPECT_EQ(driver.runButtonTag(), scanning::ScanTestDriver::Running);

    emit events.pauseScanTimer();
    EXPECT_TRUE(driver.isPaused());
    emit events.resumeScanTimer();
    EXPECT_FALSE(driver.isPaused());
}

} // namespace
