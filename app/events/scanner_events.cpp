#include "app/events/scanner_events.h"

#include "scanning/scan_test_driver.h"

namespace app {

void connectScanTestDriver(const ApplicationEvents& events, ScanTestDriver& driver)
{
    // Launch announces itself from a thread of its own; the driver's slots run on its thread.
    QObject::connect(&events, &ApplicationEvents::appFinishLaunching, &driver, &ScanTestDriver::goToForeGround,
                     Qt::QueuedConnection);
    QObject::connect(&events, &ApplicationEvents::pauseScanTimer, &driver, &ScanTestDriver::pauseTimerNotification);
    QObject::connect(&events, &ApplicationEvents::resumeScanTimer, &driver, &ScanTestDriver::resumeTimerNotification);
}

} // namespace app
