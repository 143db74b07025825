#include "charts/RoundBends.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <cmath>
#include <limits>

using namespace corvane;

namespace {

QPen pen(Qt::PenJoinStyle join)
{
    QPen pen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, join);
    pen.setMiterLimit(10);
    return pen;
}

QImage stroked(const QPolygonF &line, const QPen &pen, double scale)
{
    QImage image(QSize(100, 60) * scale, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(pen);
    painter.drawPolyline(line);
    return image;
}

/// A line with round joins, as the average of 16 × 16 points a pixel.
QImage ideal(const QPolygonF &line, double scale)
{
    constexpr int finer = 16;
    return stroked(line, pen(Qt::RoundJoin), scale * finer)
        .scaled(QSize(100, 60) * scale, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

/// The sum of the differences of all pixels, each of which is at most 255.
int difference(const QImage &one, const QImage &other)
{
    int sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            sum += std::abs(qRed(one.pixel(x, y)) - qRed(other.pixel(x, y)));
    }
    return sum;
}

QPolygonF wave()
{
    QPolygonF line;
    for (int i = 0; i <= 20; ++i)
        line.append({10.0 + 4 * i, 30 + std::sin(i * 0.3) + 0.5 * std::sin(i * 2.1)});
    return line;
}

} // namespace

class TestRoundBends : public QObject {
    Q_OBJECT

private slots:
    void keepsWhatIsNearlyStraight_data();
    void keepsWhatIsNearlyStraight();
    void turnsInSmallSteps_data();
    void turnsInSmallSteps();
    void looksLikeRoundJoins_data();
    void looksLikeRoundJoins();
};

void TestRoundBends::keepsWhatIsNearlyStraight_data()
{
    QTest::addColumn<QPolygonF>("line");
    QTest::newRow("no point") << QPolygonF();
    QTest::newRow("one point") << QPolygonF({{1, 1}});
    QTest::newRow("two points") << QPolygonF(QList<QPointF>{{1, 1}, {5, 9}});
    QTest::newRow("a straight line") << QPolygonF({{0, 0}, {5, 5}, {10, 10}});
    QTest::newRow("a bend of 44 degrees") << QPolygonF({{0, 0}, {5, 0}, {10, 4.82}});
    QTest::newRow("a flat wave") << wave();
    QTest::newRow("two equal points") << QPolygonF({{0, 0}, {5, 0}, {5, 0}, {5, 9}});
}

void TestRoundBends::keepsWhatIsNearlyStraight()
{
    QFETCH(QPolygonF, line);
    QCOMPARE(withRoundBends(line), line);
}

void TestRoundBends::turnsInSmallSteps_data()
{
    QTest::addColumn<QPolygonF>("line");
    QTest::addColumn<int>("points");
    QTest::newRow("46 degrees") << QPolygonF({{0, 0}, {5, 0}, {10, 5.18}}) << 5;
    QTest::newRow("a right angle to the right") << QPolygonF({{0, 0}, {5, 0}, {5, 5}}) << 6;
    QTest::newRow("a right angle to the left") << QPolygonF({{0, 0}, {5, 0}, {5, -5}}) << 6;
    QTest::newRow("back on its own way") << QPolygonF({{0, 0}, {5, 0}, {0, 0}}) << 10;
    QTest::newRow("two bends") << QPolygonF({{0, 9}, {5, 0}, {10, 9}, {15, 0}}) << 14;
}

void TestRoundBends::turnsInSmallSteps()
{
    QFETCH(QPolygonF, line);
    const QPolygonF rounded = withRoundBends(line);
    QTEST(int(rounded.size()), "points");
    QCOMPARE(rounded.front(), line.front());
    QCOMPARE(rounded.back(), line.back());
    for (qsizetype i = 1; i + 1 < rounded.size(); ++i) {
        const QLineF before(rounded[i - 1], rounded[i]);
        const double turn = before.angleTo(QLineF(rounded[i], rounded[i + 1]));
        QVERIFY2(std::min(turn, 360 - turn) < 45, qPrintable(QString::number(turn)));
        const auto isNear = [&](const QPointF &point) {
            return QLineF(point, rounded[i]).length() < 0.01;
        };
        QVERIFY(std::ranges::any_of(line, isNear));
    }
}

void TestRoundBends::looksLikeRoundJoins_data()
{
    QTest::addColumn<QPolygonF>("line");
    const QPolygonF peak({{10, 50}, {50, 10}, {90, 50}});
    const QPolygonF spike({{44, 50}, {50, 20}, {56, 50}});
    const QPolygonF cliff({{10, 10}, {50, 10}, {51, 50}, {90, 50}});
    QTest::newRow("a peak") << peak;
    QTest::newRow("a spike") << spike;
    QTest::newRow("a cliff") << cliff;
    QTest::newRow("a flat wave") << wave();
}

/// At least as close to the ideal as mitres, and, but for a tenth, as Qt's round joins, which are
/// three times as far off on a flat wave.
void TestRoundBends::looksLikeRoundJoins()
{
    QFETCH(QPolygonF, line);
    for (const double scale : {1.0, 1.25, 2.0}) {
        const QImage wanted = ideal(line, scale);
        const int own =
            difference(stroked(withRoundBends(line), pen(Qt::MiterJoin), scale), wanted);
        QVERIFY(own <= difference(stroked(line, pen(Qt::MiterJoin), scale), wanted));
        QVERIFY(own <= 1.1 * difference(stroked(line, pen(Qt::RoundJoin), scale), wanted));
    }
}

QTEST_GUILESS_MAIN(TestRoundBends)
#include "tst_RoundBends.moc"
