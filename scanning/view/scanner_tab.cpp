#include "scanning/view/scanner_tab.h"

#include "scanning/results_table_item_model.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTableView>
#include <QVBoxLayout>

namespace scanning::view {

ScannerTab::ScannerTab(scanning::ScanTestDriver& driver, scanning::ResultsTableModel& results,
                       core::UserSettings& /*settings*/, QWidget* parent)
    : QWidget(parent),
      startPause_(new QAction(tr("Start/Pause Scan"), this)),
      stop_(new QAction(tr("Stop Scan"), this)),
      applyFilter_(new QAction(tr("Apply Filter"), this)),
      copy_(new QAction(tr("Copy"), this)),
      exportMenu_(new QMenu(tr("Export"), this))
{
    setObjectName(QStringLiteral("scannerTab"));
    setAccessibleName(tr("Scanner"));
    auto* table = new QTableView(this);
    table->setObjectName(QStringLiteral("resultsTable"));
    table->setAccessibleName(tr("Scan results"));
    table->setModel(new scanning::ResultsTableItemModel(results, table));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table);

    startPause_->setObjectName(QStringLiteral("startPauseAction"));
    startPause_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    stop_->setObjectName(QStringLiteral("stopAction"));
    stop_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Period));
    applyFilter_->setObjectName(QStringLiteral("applyFilterAction"));
    applyFilter_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));
    copy_->setObjectName(QStringLiteral("copyAction"));
    copy_->setShortcut(QKeySequence::Copy);
    exportMenu_->setObjectName(QStringLiteral("exportMenu"));

    connect(startPause_, &QAction::triggered, &driver, &scanning::ScanTestDriver::scanButtonPressed);
    connect(stop_, &QAction::triggered, &driver, &scanning::ScanTestDriver::cancelButtonPressed);
    connect(applyFilter_, &QAction::triggered, &driver, &scanning::ScanTestDriver::performScanForeground);
    connect(copy_, &QAction::triggered, table, [table] {
        const QModelIndex index = table->currentIndex();
        if (index.isValid())
            QApplication::clipboard()->setText(index.data().toString());
    });
    connect(&driver, &scanning::ScanTestDriver::countLabelChanged, this, &ScannerTab::statusMessage);
    connect(&driver, &scanning::ScanTestDriver::messageLabelChanged, this, &ScannerTab::statusMessage);
}

} // namespace scanning::view
