#include "scanning/database_lock.h"

#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace scanning {

namespace {

QString thisProgram()
{
    if (QCoreApplication::instance() && !QCoreApplication::applicationName().isEmpty())
        return QCoreApplication::applicationName();
    QFile comm(QStringLiteral("/proc/self/comm"));
    return comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readAll()).trimmed() : QStringLiteral("unknown");
}

// The holder wrote "<pid> <program>" when it took the lock.
QString holderOf(int fd)
{
    char buffer[256] = {};
    const ssize_t got = ::pread(fd, buffer, sizeof buffer - 1, 0);
    const QString text = got > 0 ? QString::fromUtf8(buffer, static_cast<int>(got)).trimmed() : QString();
    const QString pid = text.section(QLatin1Char(' '), 0, 0);
    const QString program = text.section(QLatin1Char(' '), 1);
    if (pid.isEmpty())
        return QStringLiteral("another process");
    return QStringLiteral("%1 (pid %2)").arg(program.isEmpty() ? QStringLiteral("a process") : program, pid);
}

} // namespace

QString DatabaseLock::lockPathFor(const QString& databasePath)
{
    return databasePath + QStringLiteral(".lock");
}

std::unique_ptr<DatabaseLock> DatabaseLock::acquire(const QString& databasePath, QString* error)
{
    const QString lockPath = lockPathFor(databasePath);
    const int fd = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        *error = QStringLiteral("cannot create the lock file %1: %2").arg(lockPath, QString::fromLocal8Bit(std::strerror(errno)));
        return nullptr;
    }
    // flock rather than fcntl: an fcntl lock is the process's and would be dropped when any other
    // descriptor of the file in this process closes, and would not refuse a second opening here.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int reason = errno;
        *error = reason == EWOULDBLOCK
                     ? QStringLiteral("it is in use by %1").arg(holderOf(fd))
                     : QStringLiteral("cannot lock %1: %2").arg(lockPath, QString::fromLocal8Bit(std::strerror(reason)));
        ::close(fd);
        return nullptr;
    }
    const QByteArray holder = QStringLiteral("%1 %2\n").arg(::getpid()).arg(thisProgram()).toUtf8();
    if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, holder.constData(), static_cast<size_t>(holder.size()), 0) < 0) {
        *error = QStringLiteral("cannot write the lock file %1: %2").arg(lockPath, QString::fromLocal8Bit(std::strerror(errno)));
        ::close(fd);
        return nullptr;
    }
    return std::unique_ptr<DatabaseLock>(new DatabaseLock(fd));
}

DatabaseLock::~DatabaseLock()
{
    ::close(fd_);
}

} // namespace scanning
