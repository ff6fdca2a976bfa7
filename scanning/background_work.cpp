#include "scanning/background_work.h"

#include <QCoreApplication>
#include <QThread>

namespace scanning {

BackgroundWork::~BackgroundWork()
{
    shutDown();
    waitForDone();
}

void BackgroundWork::start(std::function<void()> task)
{
    pool_.start(std::move(task));
}

void BackgroundWork::runOnOwnerThread(std::function<void()> f, bool wait)
{
    auto guarded = [this, f = std::move(f)] {
        if (!shuttingDown_)
            f();
    };
    if (QThread::currentThread() == thread())
        guarded();
    else
        QMetaObject::invokeMethod(this, std::move(guarded), wait ? Qt::BlockingQueuedConnection : Qt::QueuedConnection);
}

void BackgroundWork::waitForDone()
{
    while (!pool_.waitForDone(2))
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void BackgroundWork::shutDown()
{
    shuttingDown_ = true;
}

} // namespace scanning
