#include "scanning/notification_center.h"

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::postNotificationName(const QString& name)
{
    emit notificationPosted(name);
}
