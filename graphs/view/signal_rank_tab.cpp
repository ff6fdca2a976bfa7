#include "graphs/view/signal_rank_tab.h"

#include "graphs/signal_rank_model.h"
#include "graphs/view/graph_scenes.h"
#include "graphs/view/scene_style.h"
#include "plot/text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <cmath>

namespace graphs::view {

namespace {

QLabel* makeLabel(const QString& objectName, const QString& accessibleName, const FontSpec& font, const ColourCode& colour,
                  Qt::Alignment alignment, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setAccessibleName(accessibleName);
    // Network names are untrusted: never read as markup.
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment);
    label->setTextInteractionFlags(Qt::NoTextInteraction);
    QFont face(font.family);
    face.setPixelSize(static_cast<int>(font.size));
    label->setFont(face);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, toColor(colour));
    label->setPalette(palette);
    // A long name is cut at the label's width rather than widening the tab.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

} // namespace

SignalRankTab::SignalRankTab(SignalRankModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      view_(new GraphView(
          QStringLiteral("signalRankGraph"), tr("Signal rank graph"),
          [&model](const GraphTheme& theme) { return rankScene(model, theme); },
          [&model] {
              return tr("Signal rank graph, %n networks, strongest first", nullptr,
                        static_cast<int>(model.graphDataArray().size()));
          },
          this))
{
    setObjectName(QStringLiteral("signalRankTab"));
    const RankFrame frame = SignalRankModel::frame();
    selected_ = makeLabel(QStringLiteral("visibleBSSIDLabel"), tr("Selected network"), frame.labelFont,
                          frame.selectedLabelColour, Qt::AlignCenter, this);
    hovered_ = makeLabel(QStringLiteral("hoverBSSIDLabel"), tr("Network under the mouse"), frame.labelFont,
                         frame.hoveredLabelColour, Qt::AlignCenter, this);
    active_ = makeLabel(QStringLiteral("activeBSSIDLabel"), tr("Connected network"), frame.labelFont,
                        frame.activeLabelColour, Qt::AlignCenter, this);
    const ColourCode grey(0.5, 0.5, 0.5, 1.0);
    auto* best = makeLabel(QStringLiteral("bestLabel"), tr("Best"), frame.endFont, grey, Qt::AlignLeft, this);
    best->setText(frame.best);
    auto* title = makeLabel(QStringLiteral("signalRankTitle"), tr("Signal Rank"), frame.titleFont, grey, Qt::AlignCenter, this);
    title->setText(frame.title);
    auto* worst = makeLabel(QStringLiteral("worstLabel"), tr("Worst"), frame.endFont, grey, Qt::AlignRight, this);
    worst->setText(frame.worst);
    // Fixed words keep their width; only the network names give way.
    for (QLabel* fixed : {best, title, worst})
        fixed->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);

    auto* top = new QHBoxLayout;
    top->addWidget(selected_, 1);
    top->addWidget(hovered_, 1);
    top->addWidget(active_, 1);
    auto* bottom = new QHBoxLayout;
    // Under the plot area's ends, which the graph's left and right paddings move inwards.
    const GraphLayout layout = model.layout();
    bottom->setContentsMargins(static_cast<int>(layout.plotAreaPadding.left), 0,
                               static_cast<int>(layout.plotAreaPadding.right), 0);
    bottom->addWidget(best);
    bottom->addWidget(title, 1);
    bottom->addWidget(worst);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(top);
    column->addWidget(view_, 1);
    column->addLayout(bottom);

    connect(&model_, &SignalRankModel::changed, this, [this] {
        view_->refreshSoon();
        showLabels();
    });
    connect(view_, &plot::widget::PlotView::mouseMovedTo, this, [this](const QPointF& spot) { hover(barAt(spot)); });
    connect(view_, &plot::widget::PlotView::mouseLeft, this, [this] { hover(-1); });
    connect(view_, &plot::widget::PlotView::stepRequested, this, [this](plot::widget::PlotView::Step step) {
        hover(plot::widget::PlotView::stepped(hoveredIndex_, static_cast<int>(model_.graphDataArray().size()), step));
    });
    connect(view_, &plot::widget::PlotView::dismissRequested, this, [this] { hover(-1); });
    showLabels();
}

int SignalRankTab::barAt(const QPointF& spot) const
{
    const double offset = SignalRankModel::frame().barOffset;
    const long index = std::lround(spot.x() - offset);
    return index >= 0 && index < model_.graphDataArray().size() ? static_cast<int>(index) : -1;
}

void SignalRankTab::hover(int index)
{
    if (index == hoveredIndex_)
        return;
    hoveredIndex_ = index;
    model_.hoverBar(index);
}

void SignalRankTab::showLabels()
{
    const RankLabels labels = model_.labels();
    selected_->setText(plot::singleLine(labels.selected));
    hovered_->setText(plot::singleLine(labels.hovered));
    active_->setText(plot::singleLine(labels.active));
    const QString hovered = plot::singleLine(labels.hovered);
    view_->setPointedAt(hovered.trimmed().isEmpty() ? QString() : tr("Hovered: %1").arg(hovered));
}

} // namespace graphs::view
