#pragma once

#include <QString>

namespace scanning {

// A graph that can save its current picture as a PNG file for a report. The three graphs of the
// scanner tab implement it; the report decides only the folder, each graph its own file name.
class GraphImageProvider {
public:
    virtual ~GraphImageProvider() = default;
    // Returns whether the image was written into folderPath.
    virtual bool saveGraphAsImageAtPath(const QString& folderPath) = 0;
};

// The graphs whose images a report with graphs embeds; a null entry has no image to give.
struct ReportGraphs {
    static constexpr const char* channels24GHzFileName = "2-4ghzGRAPH.png";
    static constexpr const char* channels5GHzFileName = "5ghzGRAPH.png";
    static constexpr const char* signalRankFileName = "SSIDrankGRAPH.png";

    GraphImageProvider* channels24GHz = nullptr;
    GraphImageProvider* channels5GHz = nullptr;
    GraphImageProvider* signalRank = nullptr;
};

} // namespace scanning
