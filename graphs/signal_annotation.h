#pragma once

#include "graphs/graph_style.h"

#include <QString>

namespace scan {
class ScanedResultInfo;
}

// The text box shown at the sample under the mouse on the signal graphs: the values the tab
// chose to show, one per line, then the sample's time.
namespace graphs {

class SignalAnnotation {
public:
    bool showRSSI = true;
    bool showNoise = false;
    bool showSNR = false;

    // A missing record reads "No Data" for every value and has no time.
    QString text(const scan::ScanedResultInfo* record) const;
    static FontSpec font() { return FontSpec{QStringLiteral("Lucida Grande Bold"), 12.0}; }
};

} // namespace graphs
