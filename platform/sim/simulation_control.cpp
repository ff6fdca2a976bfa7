#include "platform/sim/simulation_control.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

namespace platform::sim {

SimulationControl::SimulationControl(QString path, std::shared_ptr<SimulatedWirelessInterface> interface,
                                     QObject* parent)
    : QObject(parent), path_(std::move(path)), interface_(std::move(interface))
{
    // The folder is watched too: the file may not exist yet, and an editor that saves by
    // replacing the file ends the watch on the old one.
    watcher_.addPath(QFileInfo(path_).absolutePath());
    watchFile();
    // One write can arrive as several notifications (truncate, write, rename); applying once
    // after they settle keeps a stale one from undoing what the user did in between.
    settle_.setSingleShot(true);
    settle_.setInterval(settleInterval);
    connect(&settle_, &QTimer::timeout, this, [this] { apply(); });
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, [this] {
        watchFile();
        settle_.start();
    });
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!watcher_.files().contains(path_) && QFileInfo::exists(path_)) {
            watchFile();
            settle_.start();
        }
    });
}

void SimulationControl::watchFile()
{
    if (QFileInfo::exists(path_) && !watcher_.files().contains(path_))
        watcher_.addPath(path_);
}

QStringList SimulationControl::apply()
{
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList unknown;
    for (const QByteArray& raw : file.readAll().split('\n')) {
        const QString command = QString::fromUtf8(raw).simplified();
        if (command.isEmpty())
            continue;
        const std::optional<MaybeError> outcome = run(command);
        if (!outcome) {
            qWarning().noquote() << "Simulation control: unknown command" << command << "in" << path_;
            unknown.append(command);
        } else if (*outcome) {
            qWarning().noquote() << "Simulation control:" << command << "refused:" << (*outcome)->description;
        }
    }
    return unknown;
}

std::optional<MaybeError> SimulationControl::run(const QString& command)
{
    if (command == QLatin1String("power off"))
        return interface_->setPower(false);
    if (command == QLatin1String("power on"))
        return interface_->setPower(true);
    if (command == QLatin1String("mode hostap"))
        return interface_->setHostingAccessPoint(true);
    if (command == QLatin1String("mode station"))
        return interface_->setHostingAccessPoint(false);
    return std::nullopt;
}

} // namespace platform::sim
