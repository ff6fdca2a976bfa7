#include "app/desktop/scan_main_window.h"

#include "app/desktop/preferences_window.h"
#include "scanning/view/scanner_tab.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>

namespace app::desktop {
namespace {

const QString geometryKey = QStringLiteral("mainWindowGeometry");
const QString stateKey = QStringLiteral("mainWindowState");

} // namespace

ScanMainWindow::ScanMainWindow(scanning::view::ScannerTab* scannerTab, core::UserSettings& settings,
                               const QString& backendStatus, QWidget* parent)
    : QMainWindow(parent), settings_(settings), scannerTab_(scannerTab), tabs_(new QTabWidget(this)),
      backendLabel_(new QLabel(backendStatus, this))
{
    setObjectName(QStringLiteral("skvMainWindow"));
    setAccessibleName(tr("Skyvane"));
    setWindowTitle(QStringLiteral("Skyvane"));

    tabs_->setObjectName(QStringLiteral("tabView"));
    tabs_->setAccessibleName(tr("Tabs"));
    tabs_->addTab(scannerTab, tr("Scanner"));
    setCentralWidget(tabs_);

    // The backend's sentence (a simulated radio, a replayed capture) stays in view: the user
    // must always be able to tell what they are looking at.
    backendLabel_->setObjectName(QStringLiteral("backendStatusLabel"));
    backendLabel_->setAccessibleName(tr("Backend"));
    backendLabel_->setTextFormat(Qt::PlainText);
    backendLabel_->setVisible(!backendStatus.isEmpty());
    statusBar()->setObjectName(QStringLiteral("statusBar"));
    statusBar()->setAccessibleName(tr("Status"));
    statusBar()->addPermanentWidget(backendLabel_);
    connect(scannerTab, &scanning::view::ScannerTab::statusMessage, statusBar(),
            [this](const QString& text) { statusBar()->showMessage(text); });

    buildMenus(scannerTab);
    resize(1000, 640);
}

void ScanMainWindow::buildMenus(scanning::view::ScannerTab* scannerTab)
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("fileMenu"));
    file->addMenu(scannerTab->exportMenu());
    file->addSeparator();
    QAction* preferences = file->addAction(tr("&Preferences…"), this, &ScanMainWindow::openPreferences);
    preferences->setObjectName(QStringLiteral("preferencesAction"));
    // QKeySequence::Preferences is empty on some desktops.
    preferences->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    preferences->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit"), this, &ScanMainWindow::quitRequested);
    quit->setObjectName(QStringLiteral("quitAction"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setMenuRole(QAction::QuitRole);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName(QStringLiteral("editMenu"));
    edit->addAction(scannerTab->copyAction());

    QMenu* scan = menuBar()->addMenu(tr("&Scan"));
    scan->setObjectName(QStringLiteral("scanMenu"));
    scanMenu_ = scan;
    scan->addAction(scannerTab->startPauseAction());
    scan->addAction(scannerTab->stopAction());
    scan->addAction(scannerTab->applyFilterAction());
}

void ScanMainWindow::addTab(QWidget* tab, const QString& title)
{
    tabs_->addTab(tab, title);
}

void ScanMainWindow::addScanAction(QAction* action)
{
    scanMenu_->addAction(action);
}

void ScanMainWindow::openPreferences()
{
    if (!preferences_) {
        preferences_ = new PreferencesWindow(settings_, this);
        connect(preferences_, &PreferencesWindow::settingChanged, this, &ScanMainWindow::settingChanged);
    }
    preferences_->show();
    preferences_->raise();
    preferences_->activateWindow();
}

void ScanMainWindow::saveWindowState()
{
    settings_.setValue(geometryKey, QString::fromLatin1(saveGeometry().toBase64()));
    settings_.setValue(stateKey, QString::fromLatin1(saveState().toBase64()));
    scannerTab_->saveLayout(settings_);
}

void ScanMainWindow::restoreWindowState()
{
    const QByteArray geometry = QByteArray::fromBase64(settings_.value(geometryKey).toString().toLatin1());
    // A first start opens wide enough for the table's columns, within the screen.
    if (geometry.isEmpty() || !restoreGeometry(geometry)) {
        const QSize available = screen() ? screen()->availableSize() : QSize(1280, 800);
        resize(available.boundedTo(QSize(1280, 800)));
    }
    const QByteArray state = QByteArray::fromBase64(settings_.value(stateKey).toString().toLatin1());
    if (!state.isEmpty())
        restoreState(state);
    scannerTab_->restoreLayout(settings_);
}

void ScanMainWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    emit closeRequested();
}

} // namespace app::desktop
