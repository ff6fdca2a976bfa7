#pragma once

#include "graphs/graph_style.h"
#include "graphs/view/graph_image_file.h"
#include "scanning/graph_image_provider.h"

#include <QObject>
#include <QTimer>

namespace graphs {
class GraphViewTabSet;
}

// The three pictures a report with graphs carries (2.4 GHz, 5 GHz, signal rank), kept up to
// date from the tab set's models so a report thread can save them at any moment. Works without
// a display: the desktop and the headless scanner both use it.
namespace graphs::view {

class ReportGraphImages : public QObject {
    Q_OBJECT
public:
    explicit ReportGraphImages(GraphViewTabSet& tabs, GraphTheme theme = {}, QObject* parent = nullptr);

    scanning::ReportGraphs reportGraphs();
    // Publishes the current pictures now rather than at the next turn of the event loop.
    void refresh();

private:
    GraphViewTabSet& tabs_;
    GraphTheme theme_;
    GraphImageFile channels24GHz_;
    GraphImageFile channels5GHz_;
    GraphImageFile signalRank_;
    QTimer refreshSoon_;
};

} // namespace graphs::view
