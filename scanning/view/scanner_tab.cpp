#include "scanning/view/scanner_tab.h"

#include "scanning/scan_test_driver.h"
#include "scanning/view/export_menu.h"
#include "scanning/view/filter_bar.h"
#include "scanning/view/results_table_view.h"
#include "scanning/view/scan_controls.h"
#include "scanning/view/test_list_view.h"

#include <QMessageBox>
#include <QHeaderView>
#include <QSplitter>
#include <QTextDocument>
#include <QVBoxLayout>

namespace scanning::view {

ScannerTab::ScannerTab(scanning::ScanTestDriver& driver, scanning::ResultsTableModel& results,
                       core::UserSettings& settings, QWidget* parent)
    : QWidget(parent),
      controls_(new ScanControls(driver, this)),
      tests_(new TestListView(driver, this)),
      filter_(new FilterBar(driver, this)),
      table_(new ResultsTableView(results, settings, this)),
      export_(new ExportMenu(driver, settings, [this] { return tests_->selectedRow(); }, this))
{
    setObjectName(QStringLiteral("scannerTab"));
    setAccessibleName(tr("Scanner"));

    connect(filter_, &FilterBar::inputError, controls_, &ScanControls::showMessage);
    connect(&driver, &scanning::ScanTestDriver::alertRequested, this, &ScannerTab::showAlert);
    connect(&driver, &scanning::ScanTestDriver::databaseFailed, this,
            [this](const QString& message) { showAlert(message, QString()); });
    connect(export_, &ExportMenu::alertRequested, this, &ScannerTab::showAlert);
    connect(export_, &ExportMenu::statusMessage, this, &ScannerTab::statusMessage);
    connect(table_, &ResultsTableView::samplesWindowRequested, this, &ScannerTab::samplesWindowRequested);

    // Added here too, so the shortcuts work wherever the tab is hosted.
    addActions({startPauseAction(), stopAction(), applyFilterAction(), copyAction()});

    auto* resultsSide = new QWidget(this);
    auto* resultsLayout = new QVBoxLayout(resultsSide);
    resultsLayout->setContentsMargins(0, 0, 0, 0);
    resultsLayout->addWidget(filter_);
    resultsSplitter_ = new QSplitter(Qt::Vertical, resultsSide);
    resultsSplitter_->setObjectName(QStringLiteral("resultsSplitter"));
    resultsSplitter_->setAccessibleName(tr("Results and graphs"));
    resultsSplitter_->setChildrenCollapsible(false);
    resultsSplitter_->addWidget(table_);
    resultsLayout->addWidget(resultsSplitter_, 1);

    scannerSplitter_ = new QSplitter(Qt::Horizontal, this);
    scannerSplitter_->setObjectName(QStringLiteral("scannerSplitter"));
    scannerSplitter_->setAccessibleName(tr("Tests and results"));
    scannerSplitter_->addWidget(tests_);
    scannerSplitter_->addWidget(resultsSide);
    scannerSplitter_->setStretchFactor(1, 1);
    scannerSplitter_->setSizes({160, 640});

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(controls_);
    layout->addWidget(scannerSplitter_, 1);
}

namespace {

const QString scannerSplitterKey = QStringLiteral("scannerSplitterState");
const QString resultsSplitterKey = QStringLiteral("resultsSplitterState");
const QString resultsHeaderKey = QStringLiteral("resultsHeaderState");

QString encoded(const QByteArray& state) { return QString::fromLatin1(state.toBase64()); }
QByteArray decoded(const QVariant& value) { return QByteArray::fromBase64(value.toString().toLatin1()); }

} // namespace

void ScannerTab::saveLayout(core::UserSettings& settings) const
{
    settings.setValue(scannerSplitterKey, encoded(scannerSplitter_->saveState()));
    settings.setValue(resultsSplitterKey, encoded(resultsSplitter_->saveState()));
    settings.setValue(resultsHeaderKey, encoded(table_->horizontalHeader()->saveState()));
}

void ScannerTab::restoreLayout(const core::UserSettings& settings)
{
    // A state that does not fit (another set of visible columns, a damaged value) is refused by
    // Qt and the default layout stays.
    scannerSplitter_->restoreState(decoded(settings.value(scannerSplitterKey)));
    resultsSplitter_->restoreState(decoded(settings.value(resultsSplitterKey)));
    if (table_->horizontalHeader()->restoreState(decoded(settings.value(resultsHeaderKey))))
        table_->keepColumnWidths();
}

void ScannerTab::setGraphPane(QWidget* pane)
{
    resultsSplitter_->addWidget(pane);
    resultsSplitter_->setStretchFactor(0, 1);
    resultsSplitter_->setStretchFactor(1, 1);
}

QAction* ScannerTab::startPauseAction() const { return controls_->startPauseAction(); }
QAction* ScannerTab::stopAction() const { return controls_->stopAction(); }
QAction* ScannerTab::applyFilterAction() const { return filter_->applyFilterAction(); }
QAction* ScannerTab::copyAction() const { return table_->copyAction(); }
QMenu* ScannerTab::exportMenu() const { return export_; }

void ScannerTab::applyFontSize() { table_->applyFontSize(); }

void ScannerTab::showAlert(const QString& messageText, const QString& informativeText)
{
    auto* box = new QMessageBox(QMessageBox::Warning, tr("Skyvane"), messageText, QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("scannerAlert"));
    box->setTextFormat(Qt::PlainText);
    // The informative text has no format switch of its own; as rich text from plain it stays literal.
    if (!informativeText.isEmpty())
        box->setInformativeText(Qt::convertFromPlainText(informativeText));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace scanning::view
