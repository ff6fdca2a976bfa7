#include "platform/sim/simulated_wireless_client.h"
#include "platform/sim/simulated_wireless_interface.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace platform::sim;

// The control file is watched through the event loop, which needs an application object.
class SimulationControlFile : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "sim_tests";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance())
            static QCoreApplication application(argc, argv);
    }

    SimulationControlFile()
    {
        SimulationSettings settings;
        settings.controlFile = path();
        client_ = std::make_unique<SimulatedWirelessClient>(SimulationReason::ChosenOnCommandLine, settings);
        wifi_ = client_->interfaceWithName(QStringLiteral("sim0"));
        QObject::connect(wifi_.get(), &WirelessInterface::powerDidChange, [this] { ++powerChanges_; });
        QObject::connect(wifi_.get(), &WirelessInterface::modeDidChange, [this] { ++modeChanges_; });
    }

    QString path() const { return folder_.filePath(QStringLiteral("control")); }
    void write(const QByteArray& text) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }

    QTemporaryDir folder_;
    std::unique_ptr<SimulatedWirelessClient> client_;
    std::shared_ptr<WirelessInterface> wifi_;
    int powerChanges_ = 0;
    int modeChanges_ = 0;
};

TEST_F(SimulationControlFile, ACreatedThenRewrittenFileSwitchesPowerAndMode)
{
    // The file need not exist when the program starts.
    write("mode hostap\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return modeChanges_ == 1; }));
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeHostAP);

    write("mode station\npower off\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return powerChanges_ == 1; }));
    EXPECT_EQ(modeChanges_, 2);
    EXPECT_FALSE(wifi_->snapshot().powerOn);

    // Unknown lines are skipped without stopping the ones after them; a refused one (access
    // point while off) changes nothing.
    write("mode hostap\nradio on\npower on\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return powerChanges_ == 2; }));
    EXPECT_EQ(wifi_->snapshot().interfaceMode, InterfaceModeStation);
    EXPECT_EQ(modeChanges_, 2);
}

TEST_F(SimulationControlFile, AFileReplacedAsEditorsSaveKeepsBeingWatched)
{
    write("power on\n");
    QTest::qWait(100);
    for (const QByteArray& text : {QByteArray("power off\n"), QByteArray("power on\n")}) {
        QSaveFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        ASSERT_TRUE(file.commit());
        QTest::qWait(100);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return powerChanges_ == 2; }));
    EXPECT_TRUE(wifi_->snapshot().powerOn);
}

} // namespace
