#pragma once

#include <QObject>
#include <QString>

#include <optional>

struct AvahiThreadedPoll;
struct AvahiClient;
struct AvahiEntryGroup;

// Announces one service on the local network by DNS-SD through the Avahi daemon, so phones can
// find the listener without typing an address. Without a daemon it reports why and does nothing.
namespace sensor {

class DnsSdAnnouncer : public QObject {
    Q_OBJECT
public:
    explicit DnsSdAnnouncer(QObject* parent = nullptr);
    ~DnsSdAnnouncer() override;
    DnsSdAnnouncer(const DnsSdAnnouncer&) = delete;
    DnsSdAnnouncer& operator=(const DnsSdAnnouncer&) = delete;

    // Starts the announcement in the "local" domain; type as DNS-SD writes it ("_x._tcp.").
    // Nullopt when the request is under way, else why no announcement can be made.
    std::optional<QString> publish(const QString& name, const QString& type, quint16 port);
    // Withdraws the announcement; safe to call at any time.
    void stop();

signals:
    // Emitted from the announcer's own thread; connect with an automatic or queued connection.
    void announced(const QString& name);
    void announcementFailed(const QString& reason);

private:
    static void clientCallback(AvahiClient* client, int state, void* self);
    static void groupCallback(AvahiEntryGroup* group, int state, void* self);
    void addService(AvahiClient* client);

    AvahiThreadedPoll* poll_ = nullptr;
    AvahiClient* client_ = nullptr;
    AvahiEntryGroup* group_ = nullptr;
    // Owned by the Avahi thread once it runs: only touched under the poll's lock.
    QByteArray name_;
    QByteArray type_;
    quint16 port_ = 0;
};

} // namespace sensor
