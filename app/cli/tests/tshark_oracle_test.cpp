// Compares `skyvane-cli decode` with tshark's dissection of the same frames, for the fields
// where the element parser follows the 802.11 standard.
#include <gtest/gtest.h>

#include <QDir>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace {

const QStringList tsharkFields = {
    "frame.number", "_ws.malformed", "wlan.bssid", "wlan.supported_rates", "wlan.extended_supported_rates",
    "wlan.qbss.scount", "wlan.qbss.cu", "wlan.rsn.gcs.oui", "wlan.rsn.gcs.type", "wlan.rsn.pcs.oui",
    "wlan.rsn.pcs.type", "wlan.tag.vendor.oui.type", "wlan.ht.info.delim1", "wlan.ht.info.secchanoffset",
    "wlan.country_info.code",
};

using Dissection = QHash<QString, QStringList>;  // tshark field -> its values in the frame

struct Frame {
    QString where;
    QJsonObject ours;
    Dissection theirs;
};

QByteArray output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120000);
    return process.readAllStandardOutput();
}

unsigned number(const QString& text) { return text.toUInt(nullptr, 0); }

// Every beacon and probe response both tools decoded. tshark's malformed frames are left out:
// it stops at the fault, and what survives a bad element is the parser's own rule.
std::vector<Frame> pairFrames(const QString& tshark, const QString& path, int* missing)
{
    std::map<int, QJsonObject> ours;
    for (const QByteArray& line : output(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli", {"decode", path}).split('\n')) {
        const QJsonObject o = QJsonDocument::fromJson(line).object();
        ours[o["frame"].toInt()] = o;
    }
    QStringList arguments;
    if (path.contains("prism"))  // its frames end with an FCS that nothing in the header announces
        arguments << "-o" << "wlan.check_fcs:TRUE";
    arguments << "-r" << path << "-Y" << "wlan.fc.type_subtype == 8 || wlan.fc.type_subtype == 5" << "-T"
              << "fields" << "-E" << "occurrence=a" << "-E" << "aggregator=,";
    for (const QString& field : tsharkFields)
        arguments << "-e" << field;

    std::vector<Frame> frames;
    for (const QByteArray& line : output(tshark, arguments).split('\n')) {
        const QList<QByteArray> columns = line.split('\t');
        Dissection theirs;
        for (qsizetype i = 0; i < columns.size() && columns.size() == tsharkFields.size(); ++i) {
            if (!columns[i].isEmpty())
                theirs[tsharkFields[i]] = QString::fromUtf8(columns[i]).split(',');
        }
        if (theirs.isEmpty() || theirs.contains("_ws.malformed"))
            continue;
        const int frame = columns[0].toInt();
        if (!ours.count(frame))
            ++*missing;
        else
            frames.push_back({QDir(path).dirName() + " frame " + columns[0], ours[frame], theirs});
    }
    return frames;
}

QString cipherName(const QString& type)
{
    static const QStringList names = {"WEP-40/WEP-104", "WEP-40", "TKIP", "Reserved", "CCMP", "WEP-104", "BIP",
                                      "Group addressed traffic not allowed"};
    return names.value(number(type), "Reserved");
}

class TsharkOracle : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        const QString tshark = QStandardPaths::findExecutable("tshark");
        const QDir dir(SKYVANE_SHARED_DIR "/captures");
        const QStringList files = dir.entryList({"*.pcap", "*.pcapng", "*.cap"}, QDir::Files);
        if (tshark.isEmpty() || files.isEmpty())
            return;
        for (const QString& file : files) {
            for (Frame& frame : pairFrames(tshark, dir.filePath(file), &missing))
                frames.push_back(std::move(frame));
        }
    }

    void SetUp() override
    {
        if (frames.empty())
            GTEST_SKIP() << "needs tshark and the captures under " SKYVANE_SHARED_DIR "/captures";
    }

    template <typename Check>
    static void forEachFrame(Check check)
    {
        for (const Frame& frame : frames) {
            SCOPED_TRACE(frame.where.toStdString());
            check(frame.ours, frame.theirs);
        }
    }

    static inline std::vector<Frame> frames;
    static inline int missing = 0;
};

} // namespace

TEST_F(TsharkOracle, SameFramesAndBssids)
{
    EXPECT_EQ(missing, 0);
    EXPECT_GT(frames.size(), 200u);
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        EXPECT_EQ(ours["bssid"].toString(), theirs["wlan.bssid"].value(0).toUpper());
    });
}

TEST_F(TsharkOracle, LegacyRatesAreInTheRateList)
{
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        QStringList list;
        for (const QJsonValue& rate : ours["supportedDataRates"].toArray())
            list << rate.toString().remove("(B)");
        for (const QString& byte : theirs["wlan.supported_rates"] + theirs["wlan.extended_supported_rates"]) {
            const unsigned halfMbps = number(byte) & 0x7F;
            if (halfMbps >= 126)  // membership selectors, not rates
                continue;
            EXPECT_TRUE(list.contains(QString::number(halfMbps * 0.5))) << byte.toStdString();
        }
    });
}

TEST_F(TsharkOracle, BssLoad)
{
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        if (!theirs.contains("wlan.qbss.scount")) {
            EXPECT_EQ(ours["channelUtilization"].toInt(), -1);
            return;
        }
        EXPECT_EQ(ours["connectedClientCount"].toInt(), static_cast<int>(number(theirs["wlan.qbss.scount"][0])));
        EXPECT_EQ(ours["channelUtilization"].toInt(), std::ceil(number(theirs["wlan.qbss.cu"][0]) / 255.0 * 100));
    });
}

TEST_F(TsharkOracle, RsnCipherSuites)
{
    constexpr unsigned standardOui = 0x000FAC;
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        if (!theirs.contains("wlan.rsn.gcs.type")) {
            EXPECT_TRUE(ours["groupDataChiperEncryption"].toString().isEmpty());
            return;
        }
        const bool standardGroup = number(theirs["wlan.rsn.gcs.oui"][0]) == standardOui;
        EXPECT_EQ(ours["groupDataChiperEncryption"].toString(),
                  standardGroup ? cipherName(theirs["wlan.rsn.gcs.type"][0]) : "Vendor specific");
        QStringList pairwise;
        const QStringList types = theirs["wlan.rsn.pcs.type"];
        for (qsizetype i = 0; i < std::min<qsizetype>(2, types.size()); ++i) {
            if (number(theirs["wlan.rsn.pcs.oui"].value(i)) == standardOui)
                pairwise << cipherName(types[i]);
        }
        EXPECT_EQ(ours["pairWiseChiperEncryption"].toString(), pairwise.join(" + "));
    });
}

TEST_F(TsharkOracle, WpsIsAnyVendorElementOfTypeFour)
{
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        const QStringList types = theirs["wlan.tag.vendor.oui.type"];
        const bool typeFour = std::any_of(types.begin(), types.end(), [](const QString& t) { return number(t) == 4; });
        EXPECT_EQ(ours["isWPS"].toInt(), typeFour ? 1 : 0);
    });
}

TEST_F(TsharkOracle, HtSecondaryChannelOffset)
{
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        int expected = 0;
        // A whole byte of 1 and the reserved offset 2 leave the offset as it was.
        if (theirs.contains("wlan.ht.info.secchanoffset") && number(theirs["wlan.ht.info.delim1"][0]) != 1) {
            const unsigned offset = number(theirs["wlan.ht.info.secchanoffset"][0]);
            expected = offset == 1 ? 1 : offset == 3 ? -1 : 0;
        }
        if (ours["channelWidth"].toInt() >= 80)
            expected = 0;
        EXPECT_EQ(ours["channelOffset"].toInt(), expected);
    });
}

TEST_F(TsharkOracle, CountryCode)
{
    forEachFrame([](const QJsonObject& ours, const Dissection& theirs) {
        EXPECT_EQ(ours["cc"].toString(), theirs["wlan.country_info.code"].value(0));
        EXPECT_EQ(ours["cc"].isNull(), !theirs.contains("wlan.country_info.code"));
    });
}
