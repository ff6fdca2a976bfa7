#pragma once

#include <QString>
#include <QWidget>

#include <functional>

class QButtonGroup;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace sensor {
class SensorListenerSession;
}

// The sensor listener tab: port, TCP/UDP selector, start/stop, status line, server address,
// log folder and the on-screen log, all bound to the listener session's logic.
namespace sensor::view {

class SensorLogView;

class SensorListenerTab : public QWidget {
    Q_OBJECT
public:
    // Asks the user for a folder, starting at start; empty when they cancel.
    using FolderChooser = std::function<QString(QWidget* parent, const QString& start)>;

    explicit SensorListenerTab(sensor::SensorListenerSession& session, QWidget* parent = nullptr);

    // The folder dialog by default; a test gives its own.
    void setFolderChooser(FolderChooser chooser) { chooseFolder_ = std::move(chooser); }
    // Stores folder as the log folder setting (the text of its file URL) and shows it.
    void setLogFolder(const QString& folder);

    SensorLogView* logView() const { return logView_; }

public slots:
    // The preferences wrote the port or the log folder: the fields show the new values.
    void readSettings();

private:
    void openFileDialogButtonClicked();
    void showButtons();
    void showServerIPLabel();

    sensor::SensorListenerSession& session_;
    FolderChooser chooseFolder_;
    QSpinBox* udpListenerPortTextField_;
    QButtonGroup* listenerTypeSelector_;
    QPushButton* startListenerButton_;
    QLabel* serverIPLabel_;
    QLineEdit* logFilePathTextField_;
    QLabel* listenerLabelTextField_;
    QLabel* consoleLabel_;
    SensorLogView* logView_;
};

} // namespace sensor::view
