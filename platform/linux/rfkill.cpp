#include "platform/linux/rfkill.h"

#include <QDir>
#include <QFile>
#include <QSocketNotifier>

#include <linux/rfkill.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace platform::rfkill {

std::optional<Event> parseEvent(const QByteArray& bytes)
{
    if (static_cast<std::size_t>(bytes.size()) < RFKILL_EVENT_SIZE_V1)
        return std::nullopt;
    rfkill_event raw{};
    std::memcpy(&raw, bytes.constData(), sizeof raw);
    return Event{raw.idx, raw.type, raw.op, raw.soft != 0, raw.hard != 0};
}

bool SwitchTable::apply(const Event& event)
{
    const auto previous = switches_.find(event.index);
    bool changed = false;
    switch (event.op) {
    case RFKILL_OP_ADD:
    case RFKILL_OP_CHANGE:
        changed = previous == switches_.end() || previous->second.soft != event.soft
                  || previous->second.hard != event.hard;
        switches_[event.index] = event;
        break;
    case RFKILL_OP_DEL:
        changed = previous != switches_.end();
        if (changed)
            switches_.erase(previous);
        break;
    default:
        // CHANGE_ALL is a request, never a report; unknown operations come from newer kernels.
        return false;
    }
    return changed && event.type == RFKILL_TYPE_WLAN;
}

std::optional<bool> SwitchTable::wlanPowerOn(std::optional<std::uint32_t> index) const
{
    std::optional<bool> on;
    for (const auto& [switchIndex, state] : switches_) {
        if (state.type != RFKILL_TYPE_WLAN || (index && *index != switchIndex))
            continue;
        on = on.value_or(true) && !state.soft && !state.hard;
    }
    return on;
}

std::optional<std::uint32_t> indexForWiphy(const QString& wiphyName, const QString& sysfsRoot)
{
    if (wiphyName.isEmpty() || wiphyName.contains(QLatin1Char('/')))
        return std::nullopt;
    const QDir phy(sysfsRoot + QStringLiteral("/class/ieee80211/") + wiphyName);
    const QStringList entries = phy.entryList({QStringLiteral("rfkill*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool ok = false;
        const uint index = entry.mid(6).toUInt(&ok);
        if (ok)
            return index;
    }
    return std::nullopt;
}

QByteArray softBlockRequest(bool blocked)
{
    rfkill_event request{};
    request.type = RFKILL_TYPE_WLAN;
    request.op = RFKILL_OP_CHANGE_ALL;
    request.soft = blocked ? 1 : 0;
    return QByteArray(reinterpret_cast<const char*>(&request), sizeof request);
}

RfkillMonitor::RfkillMonitor(int fd, QObject* parent) : QObject(parent), fd_(fd)
{
    if (fd_ < 0)
        return;
    readPending();
    notifier_ = new QSocketNotifier(static_cast<qintptr>(fd_), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &RfkillMonitor::readPending);
}

RfkillMonitor::~RfkillMonitor()
{
    delete notifier_;
    if (fd_ >= 0)
        ::close(fd_);
}

int RfkillMonitor::openDevice()
{
    return ::open("/dev/rfkill", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

platform::MaybeError RfkillMonitor::setWlanSoftBlock(bool blocked, const QString& devicePath)
{
    const auto fail = [](int errnoValue) {
        platform::PlatformError error;
        error.domain = QStringLiteral("rfkill");
        error.code = errnoValue;
        error.description = QStringLiteral("Cannot switch the Wi-Fi radio: ") + qt_error_string(errnoValue);
        return error;
    };
    const int fd = ::open(QFile::encodeName(devicePath).constData(), O_WRONLY | O_CLOEXEC);
    if (fd < 0)
        return fail(errno);
    const QByteArray request = platform::rfkill::softBlockRequest(blocked);
    const ssize_t written = ::write(fd, request.constData(), static_cast<std::size_t>(request.size()));
    const int writeErrno = errno;
    ::close(fd);
    if (written != request.size())
        return fail(written < 0 ? writeErrno : EIO);
    return std::nullopt;
}

std::optional<bool> RfkillMonitor::wlanPowerOn(std::optional<std::uint32_t> index) const
{
    std::lock_guard lock(mutex_);
    return table_.wlanPowerOn(index);
}

void RfkillMonitor::readPending()
{
    bool changed = false;
    // Large enough for the extended event a newer kernel might send; each read is one event.
    std::array<char, 64> buffer{};
    for (;;) {
        const ssize_t count = ::read(fd_, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            // The device went away or broke: stop listening rather than spin on it.
            if ((count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) && notifier_ != nullptr)
                notifier_->setEnabled(false);
            break;
        }
        const auto event = parseEvent(QByteArray(buffer.data(), static_cast<qsizetype>(count)));
        if (!event)
            continue;
        std::lock_guard lock(mutex_);
        changed = table_.apply(*event) || changed;
    }
    if (changed)
        emit wlanPowerChanged();
}

} // namespace platform::rfkill
