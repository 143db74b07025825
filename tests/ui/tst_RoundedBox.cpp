#include "ui/RoundedBox.h"

#include "ui/Theme.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace corvane;

namespace {

constexpr QRect box{4, 4, 24, 16};

/// What `paint` leaves on a clear picture around the box.
template <typename Paint>
QImage painted(Paint paint)
{
    QImage picture(32, 24, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paint(painter);
    return picture;
}

bool isClearOutside(const QImage &picture)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (!box.contains(x, y) && picture.pixelColor(x, y).alpha() > 0)
                return false;
        }
    }
    return true;
}

} // namespace

class TestRoundedBox : public QObject {
    Q_OBJECT

private slots:
    void fillsUpToItsEdge();
    void strokesInsideItsEdge_data();
    void strokesInsideItsEdge();
    void ringsAreTwoPointsWide();
};

void TestRoundedBox::fillsUpToItsEdge()
{
    const QImage picture =
        painted([](QPainter &painter) { fillRounded(painter, box, 6, QColor(Qt::red)); });
    QVERIFY(isClearOutside(picture));
    QCOMPARE(picture.pixelColor(box.center()), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(box.center().x(), box.top()), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(box.left(), box.center().y()), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(box.topLeft()).alpha(), 0);
}

void TestRoundedBox::strokesInsideItsEdge_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("a hairline") << 1;
    QTest::newRow("a ring") << 2;
    QTest::newRow("a broad line") << 4;
}

void TestRoundedBox::strokesInsideItsEdge()
{
    QFETCH(int, width);
    const QImage picture =
        painted([&](QPainter &painter) { strokeRounded(painter, box, 6, Qt::red, width); });
    QVERIFY(isClearOutside(picture));
    const int middle = box.center().x();
    for (int y = box.top(); y < box.top() + width; ++y)
        QCOMPARE(picture.pixelColor(middle, y), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(middle, box.top() + width).alpha(), 0);
    QCOMPARE(picture.pixelColor(box.topLeft()).alpha(), 0);
}

void TestRoundedBox::ringsAreTwoPointsWide()
{
    const QImage ring = painted([](QPainter &painter) { paintFocusRing(painter, box, 6); });
    const QImage line =
        painted([](QPainter &painter) { strokeRounded(painter, box, 6, Theme::focusRing, 2); });
    QCOMPARE(ring, line);
    QVERIFY(ring.pixelColor(box.center().x(), box.top() + 1).alpha() > 0);
}

QTEST_MAIN(TestRoundedBox)
#include "tst_RoundedBox.moc"
