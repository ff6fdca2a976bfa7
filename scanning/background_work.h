#pragma once

#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>

namespace scanning {

// Tasks on a private thread pool that hand their results back to the thread owning this object.
// After shutDown() the hand-offs are dropped, so nothing reaches an owner being destroyed.
class BackgroundWork : public QObject {
    Q_OBJECT
public:
    // One task at a time, in the order started: a task never races an earlier one of its owner.
    explicit BackgroundWork(QObject* parent = nullptr) : QObject(parent) { pool_.setMaxThreadCount(1); }
    ~BackgroundWork() override;

    void start(std::function<void()> task);
    // Runs f on the owner thread; from the owner thread itself it runs at once.
    void runOnOwnerThread(std::function<void()> f, bool wait);
    // Delivers the hand-offs while waiting: a task may be blocked until its hand-off has run.
    void waitForDone();
    void shutDown();
    bool isShuttingDown() const { return shuttingDown_; }

private:
    std::atomic<bool> shuttingDown_{false};
    QThreadPool pool_;
};

} // namespace scanning
