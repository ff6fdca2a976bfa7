#pragma once

#include <QObject>
#include <QString>

// The program's in-process notifications ("appFinishLaunching", "pauseScanTimer", ...): any part
// may post one by name without knowing who observes it. Observers connect to notificationPosted;
// a post from another thread reaches them on their own thread.
class NotificationCenter : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    static NotificationCenter& defaultCenter();
    void postNotificationName(const QString& name);

signals:
    void notificationPosted(const QString& name);
};
