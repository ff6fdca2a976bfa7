#pragma once

#include "app/events/application_events.h"

namespace scanning {
class ScanTestDriver;
}

// The scanner tab's observers of the program's notifications: launch starts the first test,
// and any window may hold and release the scan timer.
namespace app {

void connectScanTestDriver(const ApplicationEvents& events, scanning::ScanTestDriver& driver);

} // namespace app
