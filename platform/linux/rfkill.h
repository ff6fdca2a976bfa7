#pragma once

#include "platform/api/platform_error.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

class QSocketNotifier;

// The kernel's radio kill switches as /dev/rfkill reports them: which Wi-Fi radios are blocked
// in software or by a hardware switch, and a notification whenever that changes.
namespace platform::rfkill {

struct Event {
    std::uint32_t index = 0;
    std::uint8_t type = 0;  // RFKILL_TYPE_*
    std::uint8_t op = 0;    // RFKILL_OP_*
    bool soft = false;
    bool hard = false;
};

// One read()'s bytes: the original 8-byte event or a longer, extended one. Shorter is refused.
std::optional<Event> parseEvent(const QByteArray& bytes);

// The current state of every switch, built from the event stream.
class SwitchTable {
public:
    // True when the event changed what wlanPowerOn() answers for any Wi-Fi switch.
    bool apply(const Event& event);
    // The radio of one switch, or all Wi-Fi radios together when no index is given (on only
    // when none is blocked); nullopt when no such switch is known.
    std::optional<bool> wlanPowerOn(std::optional<std::uint32_t> index = std::nullopt) const;

private:
    std::map<std::uint32_t, Event> switches_;
};

// The rfkill switch that belongs to a wiphy ("phy0"), found through sysfs.
std::optional<std::uint32_t> indexForWiphy(const QString& wiphyName,
                                           const QString& sysfsRoot = QStringLiteral("/sys"));

// The request that soft-blocks (or unblocks) every Wi-Fi radio at once.
QByteArray softBlockRequest(bool blocked);

class RfkillMonitor : public QObject {
    Q_OBJECT
public:
    // Takes the descriptor (any message-based source of rfkill events); -1 gives a monitor that
    // knows no switch. What is already queued, such as the kernel's initial list, is read at once.
    explicit RfkillMonitor(int fd, QObject* parent = nullptr);
    ~RfkillMonitor() override;

    // /dev/rfkill opened for reading without blocking; -1 when there is none or access is denied.
    static int openDevice();
    // Writing is allowed to the local session's user through the device's access list.
    static platform::MaybeError setWlanSoftBlock(bool blocked, const QString& devicePath = QStringLiteral("/dev/rfkill"));

    std::optional<bool> wlanPowerOn(std::optional<std::uint32_t> index = std::nullopt) const;

signals:
    void wlanPowerChanged();

private:
    void readPending();

    int fd_ = -1;
    QSocketNotifier* notifier_ = nullptr;
    mutable std::mutex mutex_;
    SwitchTable table_;
};

} // namespace platform::rfkill
