#pragma once

#include "core/user_settings.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QMenu;
class QTabWidget;

namespace scanning::view {
class ScannerTab;
}

// The main window: the tabs, the menus over the tabs' actions, and a status bar that always
// names the backend. Closing it asks the owner, which decides whether the program quits.
namespace app::desktop {

class PreferencesWindow;

class ScanMainWindow : public QMainWindow {
    Q_OBJECT
public:
    ScanMainWindow(scanning::view::ScannerTab* scannerTab, core::UserSettings& settings, const QString& backendStatus,
                   QWidget* parent = nullptr);

    // Geometry, the dock and toolbar state and the scanner tab's layout, kept in the user
    // settings for the next launch.
    void saveWindowState();
    void restoreWindowState();

    // Another tab beside the scanner; the tab's widget names itself for accessibility.
    void addTab(QWidget* tab, const QString& title);
    // One more action at the end of the Scan menu.
    void addScanAction(QAction* action);

    // Null until File > Preferences… first opens it; then the same window each time.
    PreferencesWindow* preferencesWindow() const { return preferences_; }

public slots:
    void openPreferences();

signals:
    // The window's close button or the window manager.
    void closeRequested();
    // File > Quit.
    void quitRequested();
    // A preference was written; its readers apply it now.
    void settingChanged(const QString& key);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus(scanning::view::ScannerTab* scannerTab);

    core::UserSettings& settings_;
    scanning::view::ScannerTab* scannerTab_;
    QTabWidget* tabs_;
    QMenu* scanMenu_ = nullptr;
    QLabel* backendLabel_;
    PreferencesWindow* preferences_ = nullptr;
};

} // namespace app::desktop
