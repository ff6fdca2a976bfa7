#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A report with graphs from a machine without a display: the three pictures are drawn, and a
// real browser opening the report shows every one of them.
TEST(ReportGraphs, HeadlessReportCarriesPicturesABrowserCanShow)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QProcess cli;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    cli.setProcessEnvironment(environment);
    cli.start(QStringLiteral(SKYVANE_BINARY_DIR "/app/cli/skyvane-cli"),
              {"--simulate=30", "scan", "--count", "2", "--interval", "1", "--db", dir.filePath("db.sqlite"), "--export",
               "html-graphs", dir.filePath("report.html")});
    ASSERT_TRUE(cli.waitForFinished(60000));
    ASSERT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().constData();

    QDirIterator pages(dir.path(), {"report.html"}, QDir::Files, QDirIterator::Subdirectories);
    ASSERT_TRUE(pages.hasNext());
    const QString page = pages.next();
    const QDir folder = QFileInfo(page).dir();
    for (const char* name : {"2-4ghzGRAPH.png", "5ghzGRAPH.png", "SSIDrankGRAPH.png"}) {
        const QImage picture(folder.filePath(QStringLiteral("skv-images/") + QLatin1String(name)));
        EXPECT_FALSE(picture.isNull()) << name;
    }

    const QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (chromium.isEmpty())
        GTEST_SKIP() << "chromium is not installed; the pictures were checked without a browser";
    // A copy of the page beside it reports, once loaded, which of its images the browser decoded.
    QFile original(page);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    QFile probe(folder.filePath(QStringLiteral("probe.html")));
    ASSERT_TRUE(probe.open(QIODevice::WriteOnly));
    probe.write(original.readAll());
    probe.write("<script>window.addEventListener('load', () => { document.body.setAttribute('data-images', "
                "[...document.images].map(i => i.complete && i.naturalWidth > 0 ? 'shown' : 'broken').join(' ')); "
                "});</script>");
    probe.close();
    QProcess browser;
    browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=5000",
                             "--user-data-dir=" + dir.filePath("chromium"), "--dump-dom",
                             QUrl::fromLocalFile(probe.fileName()).toString()});
    ASSERT_TRUE(browser.waitForFinished(60000));
    const QString dom = QString::fromUtf8(browser.readAllStandardOutput());
    const QRegularExpressionMatch images = QRegularExpression(QStringLiteral("data-images=\"([^\"]*)\"")).match(dom);
    ASSERT_TRUE(images.hasMatch()) << browser.readAllStandardError().constData();
    EXPECT_EQ(images.captured(1), QStringLiteral("shown shown shown"));
}

} // namespace
