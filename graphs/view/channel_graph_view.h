#pragma once

#include "graphs/view/graph_view.h"

namespace graphs {
class ChannelGraphModel;
}

// The 2.4 GHz or 5 GHz channel graph, following its model.
namespace graphs::view {

class ChannelGraphView : public GraphView {
    Q_OBJECT
public:
    explicit ChannelGraphView(ChannelGraphModel& model, QWidget* parent = nullptr);

    // "2.4 GHz" or "5 GHz".
    static QString bandName(const ChannelGraphModel& model);
    // The spoken summary: band, number of networks drawn and the highlighted one.
    static QString describe(const ChannelGraphModel& model);
};

} // namespace graphs::view
