#include "lists/RowList.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QTest>
#include <QWheelEvent>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// Rows of 20 in red on a list of 300 × 100 with margins of 16.
struct List {
    explicit List(int count, QWidget *parentWidget = nullptr) : parent(parentWidget)
    {
        list.resize(300, 100);
        list.setRowCount(count);
        list.show();
    }

    QWidget *parent;
    std::vector<int> painted = {};
    RowList list{u"Rows"_s,
                 {.height = 20,
                  .margin = 16,
                  .paint =
                      [this](QPainter &painter, int row, const QRectF &place) {
                          painted.push_back(row);
                          painter.fillRect(place, QColor(200, 0, 0));
                      },
                  .accessibleRow =
                      [](int row) {
                          return AccessibleText{.name = u"row %1"_s.arg(row),
                                                .value = u"x"_s,
                                                .description = u"about <%1>"_s.arg(row)};
                      }},
                 parent};
};

void turnWheel(RowList &list, const QPoint &pixels, int eighths)
{
    QWheelEvent event(QPointF(10, 10), QPointF(10, 10), pixels, QPoint(0, eighths), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&list, &event);
}

} // namespace

class TestRowList : public QObject {
    Q_OBJECT

private slots:
    void placesRowsAndThumb_data();
    void placesRowsAndThumb();
    void scrollsByKeys_data();
    void scrollsByKeys();
    void scrollsByWheel();
    void scrollsByTheThumb();
    void staysInRangeWhenRowsAreRemoved();
    void paintsOnlyRowsInView();
    void clipsRows_data() { fadesWhileThereAreMoreRows_data(); }
    void clipsRows();
    void fadesWhileThereAreMoreRows_data();
    void fadesWhileThereAreMoreRows();
    void ignoresOtherKeys();
    void focusRingCoversNoRow();
    void copiesARowOrAllRows();
    void everyRowIsAccessible();
};

void TestRowList::placesRowsAndThumb_data()
{
    QTest::addColumn<RowGeometry>("rows");
    QTest::addColumn<int>("maxOffset");
    QTest::addColumn<double>("thumbTopAtTheEnd");
    QTest::addColumn<double>("thumbHeight");
    QTest::newRow("no rows") << RowGeometry{20, 0, 0, 250} << 0 << 0.0 << 0.0;
    QTest::newRow("all fit exactly") << RowGeometry{20, 0, 5, 100} << 0 << 0.0 << 0.0;
    QTest::newRow("twenty in a card") << RowGeometry{20, 0, 20, 250} << 150 << 93.75 << 156.25;
    QTest::newRow("gaps are between rows only") << RowGeometry{34, 10, 3, 122} << 0 << 0.0 << 0.0;
    QTest::newRow("one point too many")
        << RowGeometry{34, 10, 3, 121} << 1 << 1 - 1.0 / 122 << 121.0 * 121 / 122;
    QTest::newRow("the thumb has a minimum height")
        << RowGeometry{20, 0, 10000, 100} << 199900 << 76.0 << 24.0;
}

void TestRowList::placesRowsAndThumb()
{
    QFETCH(RowGeometry, rows);
    QTEST(rows.maxOffset(), "maxOffset");
    QFETCH(double, thumbTopAtTheEnd);
    QFETCH(double, thumbHeight);
    const auto [top, height] = rows.thumb(rows.maxOffset());
    QVERIFY(qAbs(height - thumbHeight) < 1e-9);
    QVERIFY(qAbs(top - thumbTopAtTheEnd) < 0.01);
    QCOMPARE(rows.top(2, 5), 2 * (rows.rowHeight + rows.gap) - 5);
}

void TestRowList::scrollsByKeys_data()
{
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<int>("offset");
    using Keys = QList<Qt::Key>;
    QTest::newRow("down") << Keys{Qt::Key_Down} << 20;
    QTest::newRow("down and up") << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Up} << 20;
    QTest::newRow("not above the first") << Keys{Qt::Key_Up} << 0;
    QTest::newRow("a page leaves one row in sight") << Keys{Qt::Key_PageDown} << 80;
    QTest::newRow("a page back") << Keys{Qt::Key_End, Qt::Key_PageUp} << 220;
    QTest::newRow("to the end") << Keys{Qt::Key_End} << 300;
    QTest::newRow("not below the last") << Keys{Qt::Key_End, Qt::Key_PageDown} << 300;
    QTest::newRow("home again") << Keys{Qt::Key_End, Qt::Key_Home} << 0;
}

void TestRowList::scrollsByKeys()
{
    QFETCH(QList<Qt::Key>, keys);
    List list(20);
    for (const Qt::Key key : keys)
        QTest::keyClick(&list.list, key);
    QTEST(list.list.offset(), "offset");
}

void TestRowList::scrollsByWheel()
{
    List list(20);
    turnWheel(list.list, {}, -120);
    QCOMPARE(list.list.offset(), 60);
    turnWheel(list.list, {0, 25}, 0);
    QCOMPARE(list.list.offset(), 35);
    // Fine steps add up.
    turnWheel(list.list, {}, -1);
    turnWheel(list.list, {}, -1);
    QCOMPARE(list.list.offset(), 36);
    turnWheel(list.list, {}, 12000);
    QCOMPARE(list.list.offset(), 0);
}

void TestRowList::scrollsByTheThumb()
{
    List list(20);
    QTest::mousePress(&list.list, Qt::LeftButton, {}, {292, 5});
    QTest::mouseMove(&list.list, {292, 95});
    QCOMPARE(list.list.offset(), 300);
    QTest::mouseRelease(&list.list, Qt::LeftButton, {}, {292, 95});
    QTest::mouseMove(&list.list, {292, 5});
    QCOMPARE(list.list.offset(), 300);
    QTest::mousePress(&list.list, Qt::LeftButton, {}, {100, 5});
    QTest::mouseMove(&list.list, {100, 50});
    QCOMPARE(list.list.offset(), 300);
}

void TestRowList::staysInRangeWhenRowsAreRemoved()
{
    List list(20);
    list.list.scrollTo(300);
    list.list.setRowCount(6);
    QCOMPARE(list.list.offset(), 20);
    list.list.resize(300, 200);
    QCOMPARE(list.list.offset(), 0);
    list.list.setRowCount(0);
    QCOMPARE(list.list.offset(), 0);
    rendered(list.list, 1);
}

void TestRowList::paintsOnlyRowsInView()
{
    List list(1000);
    list.list.scrollTo(50);
    rendered(list.list, 1);
    list.painted.clear();
    rendered(list.list, 1);
    std::ranges::sort(list.painted);
    list.painted.erase(std::unique(list.painted.begin(), list.painted.end()), list.painted.end());
    QCOMPARE(list.painted, (std::vector<int>{2, 3, 4, 5, 6, 7}));
}

void TestRowList::clipsRows()
{
    QFETCH(double, scale);
    RowList list(u"Rows"_s,
                 {.height = 20,
                  .gap = 10,
                  .paint =
                      [](QPainter &painter, int row, const QRectF &place) {
                          const QColor color = row % 2 == 0 ? Qt::red : Qt::blue;
                          painter.fillRect(place.adjusted(-50, -50, 50, 50), color);
                      },
                  .accessibleRow = [](int) { return AccessibleText{}; }},
                 nullptr);
    list.resize(100, 110);
    list.setRowCount(5); // The last two fade.
    const QImage image = rendered(list, scale);
    QCOMPARE(pixelAt(image, 50, 1), QColor(Qt::red));
    QCOMPARE(pixelAt(image, 50, 19), QColor(Qt::red));
    QCOMPARE(pixelAt(image, 50, 25).alpha(), 0);
    QCOMPARE(pixelAt(image, 50, 31), QColor(Qt::blue));
    QCOMPARE(pixelAt(image, 50, 85).alpha(), 0);
    QVERIFY(pixelAt(image, 50, 95).blue() > 150 && pixelAt(image, 50, 95).red() == 0);
}

void TestRowList::fadesWhileThereAreMoreRows_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 1.25") << 1.25;
    QTest::newRow("scale 2") << 2.0;
}

void TestRowList::fadesWhileThereAreMoreRows()
{
    QFETCH(double, scale);
    List list(20);
    QImage image = rendered(list.list, scale);
    QCOMPARE(pixelAt(image, 100, 81).alpha(), 255);
    QVERIFY(qAbs(pixelAt(image, 100, 91).alpha() - 128) < 20);
    QVERIFY(pixelAt(image, 100, 99.4).alpha() < 20);
    QVERIFY(isClose(pixelAt(image, 292, 5), Theme::scrollThumb, 4));
    QCOMPARE(pixelAt(image, 292, 60).alpha(), 0);

    list.list.scrollTo(300);
    image = rendered(list.list, scale);
    QCOMPARE(pixelAt(image, 100, 99.4).alpha(), 255);
    QVERIFY(isClose(pixelAt(image, 292, 95), Theme::scrollThumb, 4));

    list.list.setRowCount(5);
    image = rendered(list.list, scale);
    QCOMPARE(pixelAt(image, 100, 99.4).alpha(), 255);
    QCOMPARE(pixelAt(image, 292, 5).alpha(), 0);
}

void TestRowList::ignoresOtherKeys()
{
    List list(20);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QApplication::sendEvent(&list.list, &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(list.list.offset(), 0);
}

void TestRowList::focusRingCoversNoRow()
{
    QWidget window;
    List list(5, &window);
    window.resize(300, 120);
    list.list.move(0, 10);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    list.list.setFocus();
    const QImage image = rendered(window, 1);
    for (const double x : {4.0, 295.0})
        QVERIFY(isClose(pixelAt(image, x, 60), Theme::focusRing, 4));
    for (const double y : {4.0, 5.0}) // 6 above the first row.
        QVERIFY(isClose(pixelAt(image, 150, y), Theme::focusRing, 4));
    QVERIFY(hasRoundCorner(rendered(window, 8), {3, 4}, 7, Theme::focusRing));
    for (int x = 16; x < 284; ++x) {
        QCOMPARE(pixelAt(image, x, 10), QColor(200, 0, 0));
        QCOMPARE(pixelAt(image, x, 60), QColor(200, 0, 0));
    }
}

void TestRowList::copiesARowOrAllRows()
{
    List list(8);
    list.list.scrollTo(20); // The second row is the first in view.
    const auto copiedByMenu = [&list](QContextMenuEvent::Reason reason, const QPoint &place) {
        QContextMenuEvent event(reason, place, list.list.mapToGlobal(place));
        QApplication::sendEvent(&list.list, &event);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        menu->actions().first()->trigger();
        menu->close();
        return QGuiApplication::clipboard()->text();
    };
    QCOMPARE(copiedByMenu(QContextMenuEvent::Mouse, {100, 25}), u"row 2: x"_s);
    const QString all = copiedByMenu(QContextMenuEvent::Keyboard, {100, 25});
    QCOMPARE(all.count(u'\n'), 7);
    QVERIFY(all.startsWith(u"row 0: x\nrow 1: x\n"_s));
    QCOMPARE(copiedByMenu(QContextMenuEvent::Mouse, {2, 25}), all); // Beside the rows.

    QGuiApplication::clipboard()->clear();
    QTest::keySequence(&list.list, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), all);
}

void TestRowList::everyRowIsAccessible()
{
    List list(20);
    list.list.scrollTo(40);
    const std::vector<AccessibleText> texts = list.list.accessibleTexts();
    QCOMPARE(texts.size(), std::size_t(20));
    QCOMPARE(texts[3].name, u"row 3"_s);
    QCOMPARE(texts[3].place, QRectF(16, 20, 268, 20));
}

QTEST_MAIN(TestRowList)
#include "tst_RowList.moc"
