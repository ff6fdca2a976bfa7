#include "scanning/view/export_menu.h"

#include "scanning/scan_test_driver.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>

#include <memory>

namespace scanning::view {

namespace {

QString chooseInDialog(QWidget* parent, const QString& suggestedFileName)
{
    return QFileDialog::getSaveFileName(parent, QObject::tr("Export"), suggestedFileName);
}

} // namespace

ExportMenu::ExportMenu(scanning::ScanTestDriver& driver, const core::UserSettings& settings, SelectedTest selectedTest,
                       QWidget* parent)
    : QMenu(tr("Export"), parent),
      driver_(driver),
      settings_(settings),
      selectedTest_(std::move(selectedTest)),
      chooser_([this](const QString& name) { return chooseInDialog(parentWidget(), name); })
{
    setObjectName(QStringLiteral("exportMenu"));
    setAccessibleName(tr("Export"));
    const std::pair<scanning::ScanExporter::Kind, QString> kinds[] = {
        {scanning::ScanExporter::SelectedTestCsv, tr("Selected Test as CSV…")},
        {scanning::ScanExporter::AllTestsCsv, tr("All Tests as CSV…")},
        {scanning::ScanExporter::SelectedTestHtml, tr("Selected Test as HTML Report…")},
        {scanning::ScanExporter::SelectedTestHtmlWithGraphs, tr("Selected Test as HTML Report with Graphs…")},
        {scanning::ScanExporter::AllTestsHtml, tr("All Tests as HTML Report…")},
    };
    for (const auto& [kind, title] : kinds) {
        QAction* action = addAction(title);
        action->setObjectName(QStringLiteral("exportAction%1").arg(kind));
        action->setData(kind);
        connect(action, &QAction::triggered, this, [this, kind = kind] { exportScanResults(kind); });
        actions_ << action;
    }
    // Report writing is slow and blocking; the global pool is left to painting.
    pool_.setMaxThreadCount(1);
}

ExportMenu::~ExportMenu() { pool_.waitForDone(); }

QAction* ExportMenu::actionFor(scanning::ScanExporter::Kind kind) const
{
    for (QAction* action : actions_) {
        if (action->data().toInt() == kind)
            return action;
    }
    return nullptr;
}

void ExportMenu::exportScanResults(scanning::ScanExporter::Kind kind)
{
    const auto& tests = driver_.wifiScanTestArray();
    if (tests.isEmpty())
        return;
    const QString path = chooser_(scanning::ScanExporter::suggestedFileName(kind, clock_.now()));
    if (path.isEmpty())
        return;
    // The scans go on changing the tests, so the export thread works on copies of them.
    auto copies = std::make_shared<QList<scanning::WiFiScanTest>>();
    for (const auto& test : tests)
        copies->append(*test);
    const int selected = selectedTest_ ? selectedTest_() : -1;
    auto* watcher = new QFutureWatcher<scanning::ScanExporter::Result>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        --running_;
        report(watcher->result());
        watcher->deleteLater();
    });
    ++running_;
    watcher->setFuture(QtConcurrent::run(&pool_, [this, copies, selected, kind, path, graphs = graphs_] {
        QList<scanning::WiFiScanTest*> all;
        for (scanning::WiFiScanTest& test : *copies)
            all << &test;
        scanning::WiFiScanTest* chosen = selected >= 0 && selected < all.size() ? all.at(selected) : nullptr;
        return scanning::ScanExporter(clock_, settings_).startExporting(kind, scanning::ScanExporter::destinationPath(path),
                                                                        all, chosen, graphs);
    }));
}

void ExportMenu::waitForExports()
{
    while (running_ > 0) {
        pool_.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

void ExportMenu::report(const scanning::ScanExporter::Result& result)
{
    if (!result.statusText.isEmpty())
        emit statusMessage(result.statusText);
    if (!result.alertText.isEmpty())
        emit alertRequested(result.alertText, QString());
    emit exportFinished(result);
}

} // namespace scanning::view
