#include "platform/sound/beep_player.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

#include <canberra.h>

Q_LOGGING_CATEGORY(lcSound, "skyvane.sound", QtWarningMsg)

namespace platform::sound {

// Owns the libcanberra context; lives on the player's thread, so the context is only ever used
// from there and a slow or absent sound server never holds up the caller.
class BeepPlayer::Worker : public QObject {
public:
    explicit Worker(QString soundFile, BeepPlayer& owner) : soundFile_(std::move(soundFile)), owner_(owner) {}
    ~Worker() override
    {
        if (context_)
            ca_context_destroy(context_);
    }

    // True when a play can be tried; reports once why not.
    bool prepare()
    {
        if (soundFile_.isEmpty()) {
            reportOnce(QStringLiteral("the beep sound file was not found"));
            return false;
        }
        return context_ || open();
    }

    void play()
    {
        if (!prepare())
            return;
        const int result = ca_context_play(context_, 0, CA_PROP_MEDIA_FILENAME, soundFile_.toLocal8Bit().constData(),
                                           CA_PROP_EVENT_DESCRIPTION, "Audio tracking beep", nullptr);
        if (result != CA_SUCCESS)
            reportOnce(QString::fromUtf8(ca_strerror(result)));
    }

private:
    bool open()
    {
        int result = ca_context_create(&context_);
        if (result == CA_SUCCESS) {
            ca_context_change_props(context_, CA_PROP_APPLICATION_NAME, "Skyvane", CA_PROP_APPLICATION_ID,
                                    "org.skyvane.Skyvane", nullptr);
            result = ca_context_open(context_);
        }
        if (result == CA_SUCCESS)
            return true;
        if (context_)
            ca_context_destroy(context_);
        context_ = nullptr;
        reportOnce(QString::fromUtf8(ca_strerror(result)));
        return false;
    }

    void reportOnce(const QString& reason)
    {
        if (reported_)
            return;
        reported_ = true;
        qCWarning(lcSound).noquote() << "cannot play the beep:" << reason;
        emit owner_.unavailable(reason);
    }

    const QString soundFile_;
    BeepPlayer& owner_;
    ca_context* context_ = nullptr;
    bool reported_ = false;
};

QString BeepPlayer::locateBeepSound(const QString& applicationDir)
{
    const QDir dir(applicationDir);
    // Installed: bin/ beside share/. Build tree: the program sits two folders under the top.
    for (const QString& relative : {QStringLiteral("../share/skyvane/sounds/skyvane-beep.wav"),
                                    QStringLiteral("../../share/skyvane/sounds/skyvane-beep.wav"),
                                    QStringLiteral("../../../share/skyvane/sounds/skyvane-beep.wav")}) {
        const QFileInfo file(dir.filePath(relative));
        if (file.isFile())
            return file.canonicalFilePath();
    }
    return {};
}

BeepPlayer::BeepPlayer(const QString& soundFile, QObject* parent)
    : QObject(parent), worker_(new Worker(soundFile, *this))
{
    thread_.setObjectName(QStringLiteral("beep player"));
    worker_->moveToThread(&thread_);
    connect(&thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_.start();
    // Reaching the sound server now tells the user at once when there is none, not at the first beep.
    QMetaObject::invokeMethod(worker_, [worker = worker_] { worker->prepare(); }, Qt::QueuedConnection);
}

BeepPlayer::~BeepPlayer()
{
    thread_.quit();
    thread_.wait();
}

void BeepPlayer::play()
{
    QMetaObject::invokeMethod(worker_, [worker = worker_] { worker->play(); }, Qt::QueuedConnection);
}

} // namespace platform::sound
