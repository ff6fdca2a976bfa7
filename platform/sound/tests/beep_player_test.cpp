#include "platform/sound/beep_player.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// No sound server can be reached, and none may be started for the test.
struct WithoutSoundServer : ::testing::Test {
    void SetUp() override
    {
        qputenv("PULSE_SERVER", QByteArray("unix:") + dir.path().toUtf8() + "/no-server");
        qputenv("ALSA_CONFIG_PATH", dir.path().toUtf8() + "/no-alsa.conf");
    }
    void TearDown() override
    {
        qunsetenv("PULSE_SERVER");
        qunsetenv("ALSA_CONFIG_PATH");
    }
    QTemporaryDir dir;
    int argc = 1;
    char name[6] = "sound";
    char* argv[1] = {name};
    QCoreApplication app{argc, argv};
};

TEST_F(WithoutSoundServer, FailureIsReportedOnceAndPlayingGoesOn)
{
    const QString file = platform::sound::BeepPlayer::locateBeepSound(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli"));
    ASSERT_FALSE(file.isEmpty());
    platform::sound::BeepPlayer player(file);
    QSignalSpy unavailable(&player, &platform::sound::BeepPlayer::unavailable);
    for (int i = 0; i < 5; ++i)
        player.play();
    ASSERT_TRUE(unavailable.wait(10000));
    EXPECT_FALSE(unavailable.first().first().toString().isEmpty());
    player.play();
    QTest::qWait(300);
    EXPECT_EQ(unavailable.count(), 1);
}

TEST_F(WithoutSoundServer, MissingSoundFileIsSaidInWords)
{
    EXPECT_TRUE(platform::sound::BeepPlayer::locateBeepSound(dir.path()).isEmpty());
    platform::sound::BeepPlayer player(QString{});
    QSignalSpy unavailable(&player, &platform::sound::BeepPlayer::unavailable);
    player.play();
    ASSERT_TRUE(unavailable.wait(5000));
    EXPECT_EQ(unavailable.first().first().toString(), QStringLiteral("the beep sound file was not found"));
}

} // namespace
