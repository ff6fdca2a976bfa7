#pragma once

#include <QWidget>

#include <functional>

class QAbstractButton;
class QAction;
class QButtonGroup;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;

namespace connection {
class InterfaceInfoController;
}
namespace plot {
struct Graph;
}

namespace connection::view {

class InterfaceGraphView;

// The "Connected SSID" tab: the interface popup, power and disconnect, the fields of the
// current link, and the actions that open the ad-hoc sheet and write the connected report.
class InterfaceTab : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* identifier = "INTERFACE_INFO";

    InterfaceTab(InterfaceInfoController& controller, const QStringList& interfaceNames, QWidget* parent = nullptr);

    // "connectedSSIDReportItem": shown only while this tab is.
    QAction* reportAction() const { return reportAction_; }
    QAction* createNetworkAction() const { return createNetworkAction_; }
    // The graph's picture as a value, for the connected report to render elsewhere.
    const plot::Graph& graphScene() const;
    InterfaceGraphView* graphView() const { return graph_; }
    QString fieldText(const QString& objectName) const;
    // Each field then names where its value came from, beside it and to screen readers.
    void setExplainSources(bool explain);

signals:
    void interfaceChosen(const QString& name);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showFields();
    QLabel* addField(QFormLayout* form, const QString& objectName, const QString& title);

    InterfaceInfoController& controller_;
    QComboBox* interfacePopup_;
    QButtonGroup* powerGroup_;
    QPushButton* disconnectButton_;
    QAction* reportAction_;
    QAction* createNetworkAction_;
    InterfaceGraphView* graph_;
    QList<std::pair<QLabel*, std::function<QString()>>> fields_;
    bool explain_ = false;
};

} // namespace connection::view
