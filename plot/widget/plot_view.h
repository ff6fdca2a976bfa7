#pragma once

#include "plot/geometry.h"
#include "plot/graph.h"

#include <QImage>
#include <QThreadPool>
#include <QWidget>

#include <atomic>
#include <memory>
#include <optional>

// Shows a graph. The graph is rendered into an image on a thread of the view's own, so the GUI
// thread only copies the finished picture and draws hover marks over it; a render that a newer
// graph has overtaken is thrown away, never shown. With the keyboard focus it shows a frame and
// turns the arrow keys into steps its owner interprets, since only the owner knows what its
// points mean.
namespace plot::widget {

class PlotView : public QWidget {
    Q_OBJECT
public:
    // Left, Right, Home and End.
    enum class Step { Previous, Next, First, Last };
    Q_ENUM(Step)

    explicit PlotView(QWidget* parent = nullptr);
    ~PlotView() override;

    // Takes the picture to show; the old one stays on screen until the new one is ready.
    void setGraph(Graph graph);
    const Graph& graph() const { return graph_; }
    // Drawn on the GUI thread over the rendered picture, with the graph's frame and ranges.
    void setOverlay(QList<Plot> plots, std::optional<TextAnnotation> annotation);
    void clearOverlay();

    // The picture on show (device pixels) and the graph it was rendered from.
    QImage cachedImage() const { return cache_; }
    quint64 shownGeneration() const { return shownGeneration_; }
    quint64 latestGeneration() const { return generation_; }
    bool renderPending() const { return renderWhenShown_ || shownGeneration_ != generation_; }
    Geometry plotGeometry() const { return Geometry(graph_, QSizeF(size())); }

    // The index one step away from current among count items, held at the ends; from none yet
    // (-1), Next starts at the first and Previous at the last. -1 when there are no items.
    static int stepped(int current, int count, Step step);
    // The same among points of the graph (data values) taken in their order across the view,
    // whichever way its x axis runs.
    int steppedAlong(const QList<QPointF>& points, int current, Step step) const;

    QSize sizeHint() const override { return {640, 360}; }
    QSize minimumSizeHint() const override { return {240, 160}; }

signals:
    // A picture newer than the one shown is on screen.
    void rendered();
    void mouseMovedTo(const QPointF& data, const QPointF& pixel);
    void mouseLeft();
    void clickedAt(const QPointF& data);
    void stepRequested(plot::widget::PlotView::Step step);
    // Escape: whatever the owner points at should go.
    void dismissRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void scheduleRender();
    bool hasOverlay() const { return !overlayPlots_.isEmpty() || overlayAnnotation_.has_value(); }
    void accept(quint64 generation, const QImage& image);

    Graph graph_;
    QList<Plot> overlayPlots_;
    std::optional<TextAnnotation> overlayAnnotation_;
    QImage cache_;
    quint64 generation_ = 0;
    quint64 shownGeneration_ = 0;
    // A hidden view (a tab in the background) renders only when it is shown again.
    bool renderWhenShown_ = false;
    // Read by queued renders so they can skip work a newer graph has made stale.
    std::shared_ptr<std::atomic<quint64>> latest_ = std::make_shared<std::atomic<quint64>>(0);
    // Own threads: rendering blocks for a while and must not hold up Qt's global pool, which
    // the raster engine itself uses to split large fills.
    QThreadPool pool_;
};

} // namespace plot::widget
