#pragma once

#include "platform/sim/simulated_wireless_interface.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

// Lets a person or a test switch the simulated radio off and into access-point mode from outside
// a running program, so that both of the program's reactions can be exercised without hardware.
//
// It watches a control file; whenever the file is written, its lines are applied in order:
// "power off", "power on", "mode hostap", "mode station". Each is a no-op when the interface
// is already so, so rewriting the file with the wanted state is always safe.
namespace platform::sim {

class SimulationControl : public QObject {
    Q_OBJECT
public:
    static constexpr int settleInterval = 50; // ms

    SimulationControl(QString path, std::shared_ptr<SimulatedWirelessInterface> interface,
                      QObject* parent = nullptr);

    // Applies the control file's lines now; returns the lines that were not understood.
    QStringList apply();

private:
    void watchFile();
    // The command's outcome; nullopt when it is not a command.
    std::optional<MaybeError> run(const QString& command);

    const QString path_;
    const std::shared_ptr<SimulatedWirelessInterface> interface_;
    QFileSystemWatcher watcher_;
    QTimer settle_;
};

} // namespace platform::sim
