#include "panel/MenuBarContent.h"

#include "chip/ChipIdentity.h"
#include "controls/PanelButton.h"
#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "panel/PanelHeader.h"
#include "panel/PanelNote.h"
#include "panel/PanelRow.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

SystemMetrics busySample()
{
    return {.memory = {.total = quint64(64) << 30, .used = quint64(48) << 30},
            .chip = ChipReading{.cpuWatts = 0.04, .gpuWatts = 0.30, .gpuActiveFraction = 0.999}};
}

QStringList textsOfRows(const MenuBarContent &panel)
{
    QStringList texts;
    for (const PanelRow *row : panel.findChildren<PanelRow *>())
        texts.append(row->accessibleTexts().front().value);
    return texts;
}

/// Opens the context menu like the menu key.
void openMenu(QWidget &widget)
{
    const QPoint middle = widget.rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, widget.mapToGlobal(middle));
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestMenuBarContent : public QObject {
    Q_OBJECT

private slots:
    void hasTheDesignedSize();
    void dividersAreOfWholePixels_data();
    void dividersAreOfWholePixels();
    void rowsHaveTheirColours();
    void maskFollowsTheRoundCorners();
    void everyRowIsAccessible();
    void theTotalPowerTellsTheEnergy();
    void headerNamesChipAndPower();
    void isAsHighAsTheMachinesRows_data();
    void isAsHighAsTheMachinesRows();
    void headerSaysWhatTheMachinesPowerIs_data();
    void headerSaysWhatTheMachinesPowerIs();
    void aLongChipNameEndsBeforeThePartsOfThePower();
    void rowsComeAndGoWhileItIsOpen();
    void staysAtItsBarWhenItGrows();
    void saysWhichRoomThereIsForAModel();
    void aWholeChipExplainsTheRoomInTheRowOfMemory();
    void isCreatedWhenFirstOpened();
    void updatesWhileOpen();
    void equalNumbersCauseNoRepaint();
    void opensAtTheAnchorAndClosesAgain();
    void closesOnEscape();
    void closesOnAClickElsewhere();
    void closesWhenAnotherWindowIsActive();
    void buttonsAreReachedByTab();
    void buttonsEmitTheirSignals();
    void runsItsActionsFromItsMenu();
    void staysOpenWhileItsMenuHasTheFocus();
    void closesWithItsMenuWhenAnotherWindowIsActive();
    void hasNoMenuWithoutActions();
    void ignoresOtherKeys();
    void opensOnThePrimaryScreenForAnAnchorOutsideAll();
    void staysOnTheScreen_data();
    void staysOnTheScreen();
};

void TestMenuBarContent::theTotalPowerTellsTheEnergy()
{
    MenuBarContent panel;
    const Energy today{.seconds = 25'920, .all = 412 * 3'600, .cpu = 412 * 3'600};
    panel.showEnergy({.sinceStart = today, .days = {{QDate(2026, 6, 10), today}}});
    panel.QWidget::show();
    const auto *header = panel.findChild<PanelHeader *>();
    const QString energy = header->accessibleDescription();
    QVERIFY(energy.startsWith(u"412 Wh today, 7 h 12 min measured: CPU 412 Wh\n"_s));
    QCOMPARE(header->toolTip(), plainToolTip(energy));
    panel.showEnergy({});
    QCOMPARE(header->toolTip(), QString());
}

void TestMenuBarContent::hasTheDesignedSize()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QCOMPARE(panel.size(), QSize(280, 296));
    const auto rows = panel.findChildren<PanelRow *>();
    QCOMPARE(rows.size(), 5);
    for (int row = 0; row < rows.size(); ++row)
        QCOMPARE(rows[row]->geometry(), QRect(12, 63 + 36 * row, 256, 28));
    const auto buttons = panel.findChildren<PanelButton *>();
    QCOMPARE(buttons.size(), 2);
    QCOMPARE(buttons[0]->y(), 256);
    QCOMPARE(buttons[1]->geometry().right(), 267);
    QCOMPARE(buttons[1]->x() - buttons[0]->geometry().right() - 1, 8);
}

void TestMenuBarContent::dividersAreOfWholePixels_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("pixels");
    QTest::newRow("scale 1") << 1.0 << 1;
    QTest::newRow("scale 1.25") << 1.25 << 1;
    QTest::newRow("scale 1.5") << 1.5 << 1;
    QTest::newRow("scale 1.75") << 1.75 << 1;
    QTest::newRow("scale 2") << 2.0 << 2;
    QTest::newRow("scale 2.5") << 2.5 << 2;
}

void TestMenuBarContent::dividersAreOfWholePixels()
{
    QFETCH(double, scale);
    QFETCH(int, pixels);
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    const QImage image = rendered(panel, scale);
    const int column = image.width() / 2;
    for (const double top : {52.0, 245.0}) {
        const QColor plain = pixelAt(image, 140, top - 4);
        QList<QColor> line;
        for (int y = qRound((top - 3) * scale); y < qRound((top + 4) * scale); ++y) {
            if (image.pixelColor(column, y) != plain)
                line.append(image.pixelColor(column, y));
        }
        QCOMPARE(line.size(), pixels);
        QVERIFY(line.count(line.front()) == pixels); // Without a half-covered row.
    }
}

/// At a scale where the stems of the texts cover whole pixels.
void TestMenuBarContent::rowsHaveTheirColours()
{
    MenuBarContent panel;
    panel.show(busySample());
    panel.toggleAt({400, 10});
    const QImage image = rendered(panel, 4);
    const auto hasPixelOf = [&image](const QColor &color, const QRectF &place) {
        for (double x = place.left(); x < place.right(); x += 0.25) {
            for (double y = place.top(); y < place.bottom(); y += 0.25) {
                if (isClose(pixelAt(image, x, y), color))
                    return true;
            }
        }
        return false;
    };
    const auto onPanel = [](const QColor &color) {
        QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
        pixel.fill(Theme::panelFill);
        QPainter(&pixel).fillRect(0, 0, 1, 1, color);
        return pixel.pixelColor(0, 0);
    };
    const QList<QColor> dots{Theme::memory, Theme::gpu, Theme::cpu, Theme::ane,
                             onPanel(Theme::withOpacity(Theme::memory, 0.7))};
    for (int row = 0; row < dots.size(); ++row) {
        const QRectF place(12, 63 + 36 * row, 256, 28);
        const QRectF title(place.left() + 15, place.top(), 50, 15);
        const QRectF value(place.right() - 60, place.top(), 60, 15);
        const QRectF detail(place.right() - 60, place.top() + 15, 60, 13);
        QVERIFY(isClose(pixelAt(image, 15.5, place.top() + 7.5), dots[row]));
        QVERIFY(hasPixelOf(Theme::textPrimary, title));
        QVERIFY(hasPixelOf(Theme::textPrimary, value));
        QVERIFY(hasPixelOf(onPanel(Theme::textTertiary), detail));
        QVERIFY(!hasPixelOf(Theme::textPrimary, detail));
    }
    QVERIFY(hasPixelOf(Theme::power, QRectF(200, 12, 68, 16)));
}

void TestMenuBarContent::maskFollowsTheRoundCorners()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    const QImage picture = rendered(panel, 1);
    const QRegion mask = panel.mask();
    QVERIFY(!mask.contains(QPoint(0, 0)));
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).alpha() > 0)
                QVERIFY2(mask.contains(QPoint(x, y)),
                         qPrintable(u"clipped at %1, %2"_s.arg(x).arg(y)));
            else
                QVERIFY2(!mask.contains(QPoint(x, y)),
                         qPrintable(u"black at %1, %2"_s.arg(x).arg(y)));
        }
    }
}

void TestMenuBarContent::everyRowIsAccessible()
{
    MenuBarContent panel;
    panel.show(busySample());
    panel.toggleAt({400, 10});
    QCOMPARE(textsOfRows(panel),
             (QStringList{u"Memory: 48 GB / 64 GB, 75 %"_s, u"GPU: 100 %, 0.30 W"_s,
                          u"CPU: 0 %, 0.04 W"_s, u"ANE: 0.00 W, Neural Engine"_s,
                          u"Swap: 0 MB, of 0 MB"_s}));
}

void TestMenuBarContent::headerNamesChipAndPower()
{
    MenuBarContent panel;
    panel.show(busySample());
    panel.toggleAt({400, 10});
    const QString name = panel.findChild<PanelHeader *>()->accessibleTexts().front().value;
    QVERIFY(name.contains(SystemInfo::chipName()));
    QVERIFY(name.contains(u"0.3 W"_s));
}

void TestMenuBarContent::isAsHighAsTheMachinesRows_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("height");
    const auto withSwap = [](const ScriptedMachine &machine) {
        SystemMetrics current = machine.current();
        current.memory.swapTotal = quint64(8) << 30;
        return current;
    };
    QTest::newRow("a whole chip") << busySample() << 5 << 296;
    // The line with the room for a model takes 21; a card that sleeps does not tell its room.
    QTest::newRow("one graphics card") << oneCardMinute().current() << 5 << 317;
    QTest::newRow("six rows") << apuMinute().current() << 6 << 353;
    QTest::newRow("four cards, no swap") << fourCardsMinute().current() << 5 << 304;
    QTest::newRow("four cards and swap") << withSwap(fourCardsMinute()) << 5 << 317;
    QTest::newRow("a card asleep") << sleepingCardMinute().current() << 5 << 296;
    QTest::newRow("an integrated GPU") << integratedOnlyMinute().current() << 4 << 281;
    QTest::newRow("a virtual machine") << virtualMachineMinute().current() << 3 << 232;
    QTest::newRow("a virtual machine with swap") << withSwap(virtualMachineMinute()) << 3 << 245;
}

void TestMenuBarContent::isAsHighAsTheMachinesRows()
{
    QFETCH(SystemMetrics, current);
    MenuBarContent panel;
    panel.show(current);
    panel.toggleAt({400, 10});
    QTEST(static_cast<int>(textsOfRows(panel).size()), "rows");
    QTEST(panel.height(), "height");
    const auto rows = panel.findChildren<PanelRow *>();
    for (int row = 0; row < rows.size(); ++row)
        QCOMPARE(rows[row]->y(), 63 + 36 * row);
    QCOMPARE(panel.findChildren<PanelButton *>()[0]->geometry().bottom() + 1, panel.height() - 12);
}

void TestMenuBarContent::headerSaysWhatTheMachinesPowerIs_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QString>("expected");
    QTest::newRow("a whole chip") << busySample() << u"Corvane on Chip: 0.3 W in all"_s;
    QTest::newRow("one card") << oneCardMinute().current()
                              << u"Corvane on Chip: 318.4 W GPU only"_s;
    QTest::newRow("all parts") << fourCardsMinute().current()
                               << u"Corvane on Chip: 835.5 W in all"_s;
    QTest::newRow("a card asleep")
        << sleepingCardMinute().current() << u"Corvane on Chip: – nothing to read"_s;
    QTest::newRow("no watts, no number")
        << virtualMachineMinute().current() << u"Corvane on Chip"_s;
}

void TestMenuBarContent::headerSaysWhatTheMachinesPowerIs()
{
    QFETCH(SystemMetrics, current);
    MenuBarContent panel(secondsSinceBoot, nullptr, u"Chip"_s);
    panel.show(current);
    panel.toggleAt({400, 10});
    QTEST(panel.findChild<PanelHeader *>()->accessibleTexts().front().value, "expected");
}

void TestMenuBarContent::aLongChipNameEndsBeforeThePartsOfThePower()
{
    const auto pictureOf = [](const QString &chipName) {
        MenuBarContent panel(secondsSinceBoot, nullptr, chipName);
        panel.show(oneCardMinute().current());
        panel.toggleAt({400, 10});
        return rendered(*panel.findChild<PanelHeader *>(), 2);
    };
    const QImage none = pictureOf(QString());
    const QImage longest = pictureOf(QString(200, u'M'));
    QVERIFY(none != longest);
    const QRect parts(none.width() - 2 * 45, 0, 2 * 45, none.height());
    QCOMPARE(longest.copy(parts), none.copy(parts));
}

void TestMenuBarContent::rowsComeAndGoWhileItIsOpen()
{
    MenuBarContent panel;
    panel.show(virtualMachineMinute().current());
    panel.toggleAt({400, 10});
    QCOMPARE(panel.height(), 232);
    panel.show(apuMinute().current());
    QCOMPARE(panel.height(), 353);
    QCOMPARE(textsOfRows(panel).at(4), u"NPU: 17 %, 1.35 W"_s);
    panel.show(virtualMachineMinute().current());
    QCOMPARE(panel.height(), 232);
    QCOMPARE(textsOfRows(panel).size(), 3);
    QCOMPARE(panel.pos(), QPoint(260, 14));
}

/// Above a bar at the lower edge of the screen it grows upwards.
void TestMenuBarContent::staysAtItsBarWhenItGrows()
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    MenuBarContent panel;
    panel.show(virtualMachineMinute().current());
    panel.toggleAt({400, screen.bottom() - 10});
    const int bottom = panel.geometry().bottom();
    panel.show(oneCardMinute().current());
    QCOMPARE(panel.height(), 317);
    QCOMPARE(panel.geometry().bottom(), bottom);
}

void TestMenuBarContent::saysWhichRoomThereIsForAModel()
{
    MenuBarContent panel;
    panel.show(oneCardMinute().current());
    panel.toggleAt({400, 10});
    const auto note = [&panel] { return panel.findChild<PanelNote *>(); };
    QCOMPARE(note()->accessibleTexts().front().value,
             u"Room for a model of about 1.3 GB on GPU 0"_s);
    QCOMPARE(note()->y() + note()->height(), panel.height() - 12 - 28 - 21);
    QVERIFY(note()->toolTip().contains(u"GPU 0 has 21.59 GB of 23.99 GB in use"_s));
    QCOMPARE(note()->accessibleDescription().count(u'\n'), 2);
    panel.show(sleepingCardMinute().current());
    QVERIFY(!note()->isVisible());
    QCOMPARE(panel.height(), 296);
    SystemMetrics pressed = virtualMachineMinute().current();
    pressed.memory.available = pressed.memory.total / 2;
    pressed.memory.pressure = MemoryPressure::warning;
    panel.show(pressed);
    QCOMPARE(note()->accessibleTexts().front().value, u"Memory is under pressure"_s);
    QCOMPARE(panel.height(), 211 + 21);
}

void TestMenuBarContent::aWholeChipExplainsTheRoomInTheRowOfMemory()
{
    SystemMetrics current = busySample();
    MenuBarContent panel;
    panel.show(current);
    panel.toggleAt({400, 10});
    const auto *row = panel.findChildren<PanelRow *>().first();
    QCOMPARE(row->toolTip(), QString());
    const QImage without = rendered(panel, 2);
    current.memory.gpuUsed = gibibytes(24);
    panel.show(current);
    const QString explanation = row->accessibleTexts().front().description;
    QVERIFY(explanation.startsWith(u"Room for a model of about "_s));
    QVERIFY(explanation.contains(u"\nThe GPU has 24 GB of "_s));
    QVERIFY(row->toolTip().contains(u"Room for a model of about "_s));
    QVERIFY(!panel.findChild<PanelNote *>()->isVisible());
    QCOMPARE(rendered(panel, 2), without);
}

/// A panel that is never opened creates nothing, and a closed one is not updated.
void TestMenuBarContent::isCreatedWhenFirstOpened()
{
    MenuBarContent panel;
    panel.show(SystemMetrics::placeholder());
    QVERIFY(panel.findChildren<QWidget *>().isEmpty());
    panel.QWidget::show();
    const QStringList before = textsOfRows(panel);
    panel.hide();
    panel.show(busySample());
    QCOMPARE(textsOfRows(panel), before);
    panel.QWidget::show();
    QCOMPARE(textsOfRows(panel).at(1), u"GPU: 100 %, 0.30 W"_s);
    QCOMPARE(panel.size(), QSize(280, 296));
}

void TestMenuBarContent::updatesWhileOpen()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QVERIFY(panel.isVisible());
    panel.show(busySample());
    QCOMPARE(textsOfRows(panel).at(1), u"GPU: 100 %, 0.30 W"_s);
}

void TestMenuBarContent::equalNumbersCauseNoRepaint()
{
    MenuBarContent panel;
    panel.show(busySample());
    panel.toggleAt({400, 10});
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QCoreApplication::processEvents();
    PaintWatch watch(*panel.findChildren<PanelRow *>().at(1));
    panel.show(busySample());
    QCoreApplication::processEvents();
    QVERIFY(watch.region().isEmpty());
    panel.show(SystemMetrics::placeholder());
    QCoreApplication::processEvents();
    QVERIFY(!watch.region().isEmpty());
}

void TestMenuBarContent::opensAtTheAnchorAndClosesAgain()
{
    double now = 1000;
    MenuBarContent panel([&now] { return now; });
    panel.toggleAt({400, 10});
    QVERIFY(panel.isVisible());
    QCOMPARE(panel.y(), 14);
    QCOMPARE(panel.x(), 400 - 140);
    panel.toggleAt({400, 10});
    QVERIFY(!panel.isVisible());
    now += 0.2;
    panel.toggleAt({400, 10});
    QVERIFY2(!panel.isVisible(), "the click that closed it must not open it again");
    now += 0.1;
    panel.toggleAt({400, 10});
    QVERIFY2(panel.isVisible(), "a later click opens it again");
}

void TestMenuBarContent::closesOnEscape()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QTest::keyClick(&panel, Qt::Key_Escape);
    QVERIFY(!panel.isVisible());
}

void TestMenuBarContent::closesOnAClickElsewhere()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QTest::mouseClick(&panel, Qt::LeftButton, {}, QPoint(140, 30));
    QVERIFY2(panel.isVisible(), "a click into it does nothing");
    QTest::mouseClick(&panel, Qt::LeftButton, {}, QPoint(-20, 30));
    QVERIFY(!panel.isVisible());
}

void TestMenuBarContent::closesWhenAnotherWindowIsActive()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QEvent deactivation(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&panel, &deactivation);
    QVERIFY(!panel.isVisible());
}

void TestMenuBarContent::buttonsAreReachedByTab()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QTest::keyClick(&panel, Qt::Key_Tab);
    const auto buttons = panel.findChildren<PanelButton *>();
    QCOMPARE(panel.focusWidget(), buttons[0]);
    QTest::keyClick(buttons[0], Qt::Key_Tab);
    QCOMPARE(panel.focusWidget(), buttons[1]);
    QTest::keyClick(buttons[1], Qt::Key_Tab);
    QCOMPARE(panel.focusWidget(), buttons[0]);
}

void TestMenuBarContent::buttonsEmitTheirSignals()
{
    MenuBarContent panel;
    QSignalSpy open(&panel, &MenuBarContent::openWindowRequested);
    QSignalSpy quit(&panel, &MenuBarContent::quitRequested);
    panel.toggleAt({400, 10});
    const auto buttons = panel.findChildren<PanelButton *>();
    buttons[1]->click();
    QCOMPARE(quit.count(), 1);
    buttons[0]->click();
    QCOMPARE(open.count(), 1);
    QVERIFY2(!panel.isVisible(), "the panel makes room for the window");
}

void TestMenuBarContent::runsItsActionsFromItsMenu()
{
    MenuBarContent panel;
    QAction settings(u"Settings…"_s);
    const QSignalSpy chosen(&settings, &QAction::triggered);
    panel.addAction(&settings);
    panel.toggleAt({400, 10});
    openMenu(panel);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QCOMPARE(chosen.count(), 1);
    QVERIFY2(!panel.isVisible(), "the panel makes room for the window");
}

void TestMenuBarContent::staysOpenWhileItsMenuHasTheFocus()
{
    MenuBarContent panel;
    QAction settings(u"Settings…"_s);
    panel.addAction(&settings);
    panel.toggleAt({400, 10});
    openMenu(panel);
    QEvent deactivation(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&panel, &deactivation);
    QVERIFY(panel.isVisible());
    QPointer<QWidget> menu = QApplication::activePopupWidget();
    QTest::keyClick(menu, Qt::Key_Escape);
    QTRY_VERIFY(!menu);
    QTest::keyClick(&panel, Qt::Key_Escape);
    QVERIFY(!panel.isVisible());
}

void TestMenuBarContent::closesWithItsMenuWhenAnotherWindowIsActive()
{
    MenuBarContent panel;
    QAction settings(u"Settings…"_s);
    panel.addAction(&settings);
    panel.toggleAt({400, 10});
    openMenu(panel);
    const QPointer<QWidget> menu = QApplication::activePopupWidget();
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    if (menu)
        menu->close();
    QTRY_VERIFY(!panel.isVisible());
}

void TestMenuBarContent::hasNoMenuWithoutActions()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    openMenu(panel);
    QVERIFY(panel.findChildren<QMenu *>().isEmpty());
    QVERIFY(panel.isVisible());
}

void TestMenuBarContent::ignoresOtherKeys()
{
    MenuBarContent panel;
    panel.toggleAt({400, 10});
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(&panel, &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(panel.isVisible());
}

void TestMenuBarContent::opensOnThePrimaryScreenForAnAnchorOutsideAll()
{
    MenuBarContent panel;
    panel.toggleAt({-5000, -5000});
    QVERIFY(panel.isVisible());
    QVERIFY(QGuiApplication::primaryScreen()->geometry().contains(panel.geometry()));
}

void TestMenuBarContent::staysOnTheScreen_data()
{
    QTest::addColumn<QPoint>("anchor");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("expected");
    const QRect screen(0, 0, 1280, 800);
    QTest::newRow("below a bar at the top") << QPoint(640, 20) << screen << QPoint(500, 24);
    QTest::newRow("above a bar at the bottom") << QPoint(640, 790) << screen << QPoint(500, 490);
    QTest::newRow("kept from the right edge") << QPoint(1275, 20) << screen << QPoint(992, 24);
    QTest::newRow("kept from the left edge") << QPoint(3, 20) << screen << QPoint(8, 24);
    QTest::newRow("on a second screen")
        << QPoint(1400, 10) << QRect(1280, 30, 1000, 700) << QPoint(1288, 38);
    QTest::newRow("on a screen that is too small")
        << QPoint(50, 10) << QRect(0, 0, 200, 200) << QPoint(8, 8);
}

void TestMenuBarContent::staysOnTheScreen()
{
    QFETCH(QPoint, anchor);
    QFETCH(QRect, available);
    QTEST(panelOrigin(anchor, QSize(280, 296), available), "expected");
}

QTEST_MAIN(TestMenuBarContent)
#include "tst_MenuBarContent.moc"
