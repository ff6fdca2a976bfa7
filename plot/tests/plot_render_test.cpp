#include "plot/geometry.h"
#include "plot/renderer.h"
#include "plot/text.h"
#include "plot/widget/plot_view.h"

#include <QApplication>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class PlotRender : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        static int argc = 1;
        static char name[] = "plot_tests";
        static char* argv[] = {name, nullptr};
        if (QApplication::instance() == nullptr)
            new QApplication(argc, argv);
    }

    static plot::Graph frame()
    {
        plot::Graph graph;
        graph.background = Qt::black;
        graph.plotAreaBackground = QColor(29, 29, 29);
        graph.plotAreaPadding = {10.0, 10.0, 10.0, 10.0};
        graph.x = {0.0, 100.0};
        graph.y = {-100.0, 100.0};
        return graph;
    }

    static int count(const QImage& image, const QRect& area, const std::function<bool(QColor)>& wanted)
    {
        int n = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x)
                n += wanted(image.pixelColor(x, y)) ? 1 : 0;
        }
        return n;
    }
};

TEST_F(PlotRender, PaintsBarsAndGradientFillsWhereTheDataSays)
{
    plot::Graph graph = frame();
    graph.setPlot(plot::BarPlot{QStringLiteral("bars"), {{25.0, -20.0, Qt::yellow}}, -100.0, 10.0, 0.0, {}});
    plot::ScatterPlot area{QStringLiteral("area"), {{60.0, -100.0}, {60.0, -50.0}, {90.0, -50.0}, {90.0, -100.0}},
                           plot::LineStyle{2.0, Qt::green, {}}, 1.0, plot::Gradient{Qt::red, QColor(255, 0, 0, 64)},
                           -100.0, {}, {}};
    graph.setPlot(area);
    // 120 x 120 picture, 100 x 100 plot area: data (x, y) lands at pixel (10 + x, 110 + y).
    const QImage image = plot::renderImage(graph, QSize(120, 120));
    EXPECT_EQ(image.pixelColor(35, 80), QColor(Qt::yellow));                // inside the bar
    EXPECT_EQ(image.pixelColor(35, 20), QColor(29, 29, 29));                // above its tip
    const QColor top = image.pixelColor(75, 62);
    const QColor bottom = image.pixelColor(75, 105);
    EXPECT_GT(top.red(), 200);                                             // gradient starts strong
    EXPECT_LT(bottom.red(), top.red());                                    // and fades downwards
    EXPECT_EQ(image.pixelColor(5, 5), QColor(Qt::black));                  // graph background

    // High-DPI: the same picture at twice the pixels.
    const QImage sharp = plot::renderImage(graph, QSize(120, 120), 2.0);
    EXPECT_EQ(sharp.size(), QSize(240, 240));
    EXPECT_EQ(sharp.pixelColor(70, 160), QColor(Qt::yellow));
}

// Long translucent lines are stroked piecewise; the pieces must neither overlap (a darker seam)
// nor leave gaps, so the picture matches the lines stroked whole, up to rounding at the cuts.
TEST_F(PlotRender, LongTranslucentLinesLookAsIfStrokedWhole)
{
    const QList<QPointF> zigzag{{0.0, -95.0}, {100.0, -5.0}, {10.0, -15.0}, {95.0, -90.0}, {50.0, -2.0}};
    for (const auto& [width, ratio] : {std::pair{1.5, 1.0}, {3.0, 1.0}, {9.0, 1.0}, {3.0, 2.0}, {3.0, 1.5}}) {
        plot::Graph graph = frame();
        const plot::LineStyle style{width, QColor(255, 200, 0, 150), {}};
        graph.setPlot(plot::ScatterPlot{QStringLiteral("zigzag"), zigzag, style, 1.0, {}, -100.0, {}, {}});
        const QSize size(400, 300);
        const QImage image = plot::renderImage(graph, size, ratio);

        graph.plots.clear();
        QImage reference = plot::renderImage(graph, size, ratio);
        {
            const plot::Geometry geometry(graph, QSizeF(size));
            QPainter painter(&reference);
            painter.setRenderHint(QPainter::Antialiasing, true);
            painter.setClipRect(geometry.plotArea());
            QPen pen(style.colour, width);
            pen.setCapStyle(Qt::SquareCap);
            painter.setPen(pen);
            for (qsizetype i = 1; i < zigzag.size(); ++i)
                painter.drawLine(geometry.toPixel(zigzag[i - 1]), geometry.toPixel(zigzag[i]));
        }
        int worst = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb a = image.pixel(x, y);
                const QRgb b = reference.pixel(x, y);
                worst = std::max({worst, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                  std::abs(qBlue(a) - qBlue(b))});
            }
        }
        EXPECT_LE(worst, 6) << "pen width " << width << ", pixel ratio " << ratio;
    }
}

TEST_F(PlotRender, DrawsUntrustedTextAsPlainClippedText)
{
    EXPECT_EQ(plot::singleLine(QStringLiteral("a\nb\tc")), QStringLiteral("a\u2424b\ufffdc"));

    // Markup that a rich-text renderer would paint red and bold stays white characters.
    const QString markup = QStringLiteral("<font color=\"red\"><b>XX</b></font>");
    plot::Graph graph = frame();
    plot::TextStyle white;
    white.colour = Qt::white;
    white.pixelSize = 12.0;
    const QString longName = QString(300, QLatin1Char('W'));
    graph.setPlot(plot::ScatterPlot{QStringLiteral("labels"),
                                    {{60.0, -50.0}, {50.0, -20.0}},
                                    plot::LineStyle{0.0, Qt::transparent, {}}, 1.0, {}, -100.0, {},
                                    {plot::PointLabel{0, markup, white, Qt::AlignLeft, {100.0, 25.0}, {}},
                                     plot::PointLabel{1, longName, white, Qt::AlignLeft, {40.0, 20.0}, {}}}});
    const QImage image = plot::renderImage(graph, QSize(240, 120));
    const auto reddish = [](QColor c) { return c.red() > 120 && c.green() < 60 && c.blue() < 60; };
    const auto lit = [](QColor c) { return c.lightness() > 100; };
    EXPECT_EQ(count(image, image.rect(), reddish), 0);
    // 240 x 120 picture: data (x, y) lands at pixel (10 + 2.2 x, 110 + y). The markup label's
    // box is centred on pixel x 142, 100 wide, and ends at the point's y (60).
    const int markupInk = count(image, QRect(92, 35, 100, 25), lit);
    QImage reference(image.size(), QImage::Format_ARGB32_Premultiplied);
    reference.fill(Qt::black);
    {
        QPainter painter(&reference);
        plot::drawPlainText(painter, QRectF(0, 0, 100, 25), Qt::AlignLeft | Qt::AlignBottom, markup, white);
    }
    EXPECT_GT(markupInk, count(reference, QRect(0, 0, 100, 25), lit) / 2);
    // The 300-character name is cut at its 40 pixel box (pixels 100 to 140): nothing lit beyond.
    EXPECT_GT(count(image, QRect(100, 10, 40, 20), lit), 0);
    EXPECT_EQ(count(image, QRect(141, 10, 60, 20), lit), 0);
}

TEST_F(PlotRender, ViewShowsOnlyTheNewestRenderAndDrawsHoverOverIt)
{
    plot::widget::PlotView view;
    view.resize(120, 120);
    view.show();
    QSignalSpy rendered(&view, &plot::widget::PlotView::rendered);
    plot::Graph first = frame();
    first.plotAreaBackground = Qt::red;
    plot::Graph second = frame();
    second.plotAreaBackground = Qt::blue;
    view.setGraph(first);
    view.setGraph(second);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.renderPending(); }, 5000));
    QTest::qWait(50);
    EXPECT_EQ(view.shownGeneration(), view.latestGeneration());
    for (const QList<QVariant>& signal : rendered)
        EXPECT_TRUE(signal.isEmpty());
    const QImage cache = view.cachedImage();
    EXPECT_EQ(cache.pixelColor(cache.width() / 2, cache.height() / 2), QColor(Qt::blue));

    view.setOverlay({plot::ScatterPlot{QStringLiteral("hover"), {{50.0, -100.0}, {50.0, 0.0}},
                                       plot::LineStyle{3.0, Qt::green, {}}, 1.0, {}, -100.0, {}, {}}},
                    std::nullopt);
    const QImage shown = view.grab().toImage();
    EXPECT_EQ(shown.pixelColor(qRound(60 * shown.devicePixelRatio()), qRound(60 * shown.devicePixelRatio())),
              QColor(Qt::green));
    EXPECT_EQ(view.cachedImage().pixelColor(60, 60), QColor(Qt::blue));  // the cache is untouched
}

} // namespace
