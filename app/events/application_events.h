#pragma once

#include <QObject>

// The program's own notifications, as typed signals. The composition root owns the one
// instance and connects each signal to its observers; posting from another thread reaches
// them on their own thread as any queued signal does.
namespace app {

class ApplicationEvents : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

signals:
    // Launch is done: the scanner tab starts its first test.
    void appFinishLaunching();
    // A window that needs the radio for itself (joining, creating a network) holds the scans.
    void pauseScanTimer();
    void resumeScanTimer();
    // The connected-network report asks the interface tab for its graph's image.
    void GenerateInterfaceTabGraphImageNotification();
};

} // namespace app
