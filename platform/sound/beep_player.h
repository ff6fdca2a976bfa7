#pragma once

#include <QObject>
#include <QString>
#include <QThread>

#include <memory>

// Plays one short sound file through the desktop's sound server (libcanberra), following the
// user's output device and volume. Playing never blocks the caller: the sound server is
// reached from a thread of the player's own. Without a sound server every play fails quietly
// after the first failure has been reported once.
namespace platform::sound {

class BeepPlayer : public QObject {
    Q_OBJECT
public:
    // The bundled beep of an installed program (share/skyvane/sounds beside bin/) or of a build
    // tree; empty when neither holds it.
    static QString locateBeepSound(const QString& applicationDir);

    explicit BeepPlayer(const QString& soundFile, QObject* parent = nullptr);
    ~BeepPlayer() override;
    BeepPlayer(const BeepPlayer&) = delete;
    BeepPlayer& operator=(const BeepPlayer&) = delete;

    // Thread-safe; returns at once.
    void play();

signals:
    // The first failure to play, with the sound system's reason; emitted once per player.
    void unavailable(const QString& reason);

private:
    class Worker;
    QThread thread_;
    Worker* worker_;
};

} // namespace platform::sound
