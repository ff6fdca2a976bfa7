#pragma once

#include "app/desktop/general_preferences.h"
#include "core/user_settings.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTabWidget;

// "Skyvane Preferences": the General pane's controls over the user settings. Every change is
// written at once and announced, so the rest of the program applies it while the window is open.
namespace app::desktop {

class PreferencesWindow : public QWidget {
    Q_OBJECT
public:
    // Asks for a folder, starting at the given one; an empty answer means the user cancelled.
    using FolderChooser = std::function<QString(QWidget* parent, const QString& start)>;

    explicit PreferencesWindow(core::UserSettings& settings, QWidget* parent = nullptr);

    void setFolderChooser(FolderChooser chooser);

signals:
    void settingChanged(const QString& key);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* buildGeneralPane();
    QCheckBox* addSwitch(QFormLayout* form, const char* key, const QString& objectName, const QString& text);
    void commitListenerPort();
    void commitAutoSaveInterval();
    void chooseLogFolder();
    void showRefusal(const QString& reason);
    void restorePosition();

    core::UserSettings& settings_;
    GeneralPreferences general_;
    FolderChooser chooseFolder_;
    QTabWidget* panes_ = nullptr;
    QWidget* generalPane_ = nullptr;
    QLineEdit* portField_ = nullptr;
    QLineEdit* logFolderField_ = nullptr;
    QLineEdit* intervalField_ = nullptr;
    QLabel* message_ = nullptr;
};

} // namespace app::desktop
