#pragma once

#include <QObject>
#include <QString>

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
    // "GenerateInterfaceTabGraphImageNotification": the interface tab saves its graph's image at
    // path, or with generateReport the whole connected-network report.
    void generateInterfaceTabGraphImage(const QString& path, bool generateReport);
};

} // namespace app
