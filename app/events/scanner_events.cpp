#include "app/events/scanner_events.h"

#include "scanning/scan_test_driver.h"

namespace app {

void connectScanTestDriver(const ApplicationEvents& events, scanning::ScanTestDriver& driver)
{
    // Launch announces itself from a thread of its own; the driver's slots run on its thread.
    QObject::connect(&events, &ApplicationEvents::appFinishLaunching, &driver, &scanning::ScanTestDriver::goToForeGround,
                     Qt::QueuedConnection);
    QObject::connect(&events, &ApplicationEvents::pauseScanTimer, &driver, &scanning::ScanTestDriver::pauseTimerNotification);
    QObject::connect(&events, &ApplicationEvents::resumeScanTimer, &driver, &scanning::ScanTestDriver::resumeTimerNotification);
}

} // namespace app
