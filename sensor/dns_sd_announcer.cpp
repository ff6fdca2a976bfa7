#include "sensor/dns_sd_announcer.h"

#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/thread-watch.h>

namespace sensor {
namespace {

QString avahiError(int code) { return QString::fromUtf8(avahi_strerror(code)); }

} // namespace

DnsSdAnnouncer::DnsSdAnnouncer(QObject* parent) : QObject(parent) {}

DnsSdAnnouncer::~DnsSdAnnouncer() { stop(); }

std::optional<QString> DnsSdAnnouncer::publish(const QString& name, const QString& type, quint16 port)
{
    stop();
    name_ = name.toUtf8();
    // Avahi wants the type without the root label that DNS-SD APIs elsewhere accept.
    type_ = type.endsWith(u'.') ? type.chopped(1).toUtf8() : type.toUtf8();
    port_ = port;

    poll_ = avahi_threaded_poll_new();
    if (poll_ == nullptr)
        return QStringLiteral("DNS-SD announcement unavailable: cannot create the Avahi event loop");
    int error = 0;
    // The callback may run inside avahi_client_new, before client_ is set; it uses its argument.
    AvahiClient* client = avahi_client_new(
        avahi_threaded_poll_get(poll_), AvahiClientFlags(0),
        [](AvahiClient* c, AvahiClientState state, void* self) { clientCallback(c, state, self); }, this, &error);
    if (client == nullptr) {
        avahi_threaded_poll_free(poll_);
        poll_ = nullptr;
        group_ = nullptr;
        return QStringLiteral("DNS-SD announcement unavailable (%1); the listener still accepts connections")
            .arg(avahiError(error));
    }
    client_ = client;
    if (avahi_threaded_poll_start(poll_) < 0) {
        stop();
        return QStringLiteral("DNS-SD announcement unavailable: cannot start the Avahi thread");
    }
    return std::nullopt;
}

void DnsSdAnnouncer::stop()
{
    if (poll_ == nullptr)
        return;
    // Stopping joins the Avahi thread, so no callback runs while the objects are freed.
    avahi_threaded_poll_stop(poll_);
    if (client_ != nullptr)
        avahi_client_free(client_);  // frees the entry group too
    avahi_threaded_poll_free(poll_);
    client_ = nullptr;
    group_ = nullptr;
    poll_ = nullptr;
}

void DnsSdAnnouncer::clientCallback(AvahiClient* client, int state, void* self)
{
    auto* announcer = static_cast<DnsSdAnnouncer*>(self);
    switch (state) {
    case AVAHI_CLIENT_S_RUNNING:
        announcer->addService(client);
        break;
    case AVAHI_CLIENT_S_COLLISION:
    case AVAHI_CLIENT_S_REGISTERING:
        // The host name changes; the daemon wants our records withdrawn until it is running again.
        if (announcer->group_ != nullptr)
            avahi_entry_group_reset(announcer->group_);
        break;
    case AVAHI_CLIENT_FAILURE:
        emit announcer->announcementFailed(
            QStringLiteral("DNS-SD announcement unavailable (%1)").arg(avahiError(avahi_client_errno(client))));
        break;
    default:
        break;
    }
}

void DnsSdAnnouncer::groupCallback(AvahiEntryGroup* group, int state, void* self)
{
    auto* announcer = static_cast<DnsSdAnnouncer*>(self);
    switch (state) {
    case AVAHI_ENTRY_GROUP_ESTABLISHED:
        emit announcer->announced(QString::fromUtf8(announcer->name_));
        break;
    case AVAHI_ENTRY_GROUP_COLLISION: {
        // Another machine holds the name: take the next free variant, as DNS-SD peers do.
        char* alternative = avahi_alternative_service_name(announcer->name_.constData());
        announcer->name_ = QByteArray(alternative);
        avahi_free(alternative);
        announcer->addService(avahi_entry_group_get_client(group));
        break;
    }
    case AVAHI_ENTRY_GROUP_FAILURE:
        emit announcer->announcementFailed(QStringLiteral("DNS-SD announcement failed (%1)")
                                               .arg(avahiError(avahi_client_errno(avahi_entry_group_get_client(group)))));
        break;
    default:
        break;
    }
}

void DnsSdAnnouncer::addService(AvahiClient* client)
{
    if (group_ == nullptr) {
        group_ = avahi_entry_group_new(
            client, [](AvahiEntryGroup* g, AvahiEntryGroupState state, void* self) { groupCallback(g, state, self); },
            this);
        if (group_ == nullptr) {
            emit announcementFailed(QStringLiteral("DNS-SD announcement failed (%1)")
                                        .arg(avahiError(avahi_client_errno(client))));
            return;
        }
    } else {
        avahi_entry_group_reset(group_);
    }
    int result = avahi_entry_group_add_service(group_, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, AvahiPublishFlags(0),
                                               name_.constData(), type_.constData(), "local", nullptr, port_,
                                               static_cast<const char*>(nullptr));
    if (result >= 0)
        result = avahi_entry_group_commit(group_);
    if (result < 0)
        emit announcementFailed(QStringLiteral("DNS-SD announcement failed (%1)").arg(avahiError(result)));
}

} // namespace sensor
