#pragma once

#include "scan/scaned_result_info.h"

#include "graphs/view/graph_view.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace graphs {
class NetworkDetailsModel;
}

// The network details tab: signal and noise of the examined network over its last samples,
// its channel, data rates, signal-to-noise ratio and streams, and the way to its samples. The
// "Signal" plot's samples can be followed with the mouse or stepped along with the arrow keys.
namespace graphs::view {

class NetworkDetailsTab : public QWidget {
    Q_OBJECT
public:
    explicit NetworkDetailsTab(NetworkDetailsModel& model, QWidget* parent = nullptr);

    GraphView* graphView() const { return view_; }
    QLabel* channelValue() const { return channel_; }
    QLabel* supportedDataRateValue() const { return rates_; }
    QLabel* snrValue() const { return snr_; }
    QLabel* streamsValue() const { return streams_; }
    QPushButton* showSamplesButton() const { return showSamples_; }
    void showAnnotation(int index);

signals:
    // The user asked for the examined network's samples window.
    // header: "SSID: %@" of the examined network; history: its samples, newest first.
    void samplesWindowRequested(const QString& header, const QList<scan::ScanedResultInfo>& history);

private:
    void updateView();
    void followMouse(const QPointF& spot);
    void step(plot::widget::PlotView::Step step);

    NetworkDetailsModel& model_;
    GraphView* view_;
    QLabel* channel_;
    QLabel* rates_;
    QLabel* snr_;
    QLabel* streams_;
    QPushButton* showSamples_;
    int annotated_ = -1;
};

} // namespace graphs::view
