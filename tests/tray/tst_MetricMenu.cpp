#include "tray/MetricMenu.h"

#include "gallery/ScriptedMachines.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

SystemMetrics withGPU(double fraction)
{
    return {.chip = ChipReading{.gpuActiveFraction = fraction}};
}

/// Up to the colon; a dash for a separator.
QStringList titlesOf(const QMenu &menu)
{
    QStringList titles;
    for (const QAction *action : menu.actions())
        titles.append(action->isSeparator() ? u"-"_s : action->text().section(u':', 0, 0));
    return titles;
}

} // namespace

class TestMetricMenu : public QObject {
    Q_OBJECT

private slots:
    void showsFiveRowsAndTheCommands();
    void rowsDoNotChangeWhileItIsClosed();
    void rowsFollowWhileItIsOpen();
    void rowsFollowUntilItIsClosedEverywhere();
    void rowsComeAndGoWithTheMachinesParts();
};

void TestMetricMenu::showsFiveRowsAndTheCommands()
{
    QAction openWindow(u"Open Window"_s);
    QAction quit(u"Quit"_s);
    const MetricMenu menu({&openWindow, &quit});
    QCOMPARE(titlesOf(menu),
             (QStringList{u"Memory"_s, u"GPU"_s, u"CPU"_s, u"ANE"_s, u"Swap"_s, u"-"_s,
                          u"Open Window"_s, u"Quit"_s}));
}

void TestMetricMenu::rowsDoNotChangeWhileItIsClosed()
{
    MetricMenu menu({});
    QSignalSpy changed(menu.actions().at(1), &QAction::changed);
    menu.show(withGPU(0.5));
    QCOMPARE(changed.count(), 0);

    emit menu.aboutToShow();
    QCOMPARE(menu.actions().at(1)->text(), u"GPU: 50 %, 0.00 W"_s);
}

void TestMetricMenu::rowsFollowWhileItIsOpen()
{
    MetricMenu menu({});
    emit menu.aboutToShow();
    menu.show(withGPU(0.25));
    QCOMPARE(menu.actions().at(1)->text(), u"GPU: 25 %, 0.00 W"_s);

    QSignalSpy changed(menu.actions().at(1), &QAction::changed);
    menu.show(withGPU(0.25));
    QCOMPARE(changed.count(), 0);

    emit menu.aboutToHide();
    menu.show(withGPU(0.75));
    QCOMPARE(changed.count(), 0);
}

void TestMetricMenu::rowsFollowUntilItIsClosedEverywhere()
{
    MetricMenu menu({});
    emit menu.aboutToShow();
    emit menu.aboutToShow();
    emit menu.aboutToHide();
    menu.show(withGPU(0.25));
    QCOMPARE(menu.actions().at(1)->text(), u"GPU: 25 %, 0.00 W"_s);

    emit menu.aboutToHide();
    menu.show(withGPU(0.75));
    QCOMPARE(menu.actions().at(1)->text(), u"GPU: 25 %, 0.00 W"_s);
}

void TestMetricMenu::rowsComeAndGoWithTheMachinesParts()
{
    QAction quit(u"Quit"_s);
    MetricMenu menu({&quit});
    emit menu.aboutToShow();
    menu.show(virtualMachineMinute().current());
    QCOMPARE(titlesOf(menu), (QStringList{u"Memory"_s, u"CPU"_s, u"Swap"_s, u"-"_s, u"Quit"_s}));
    menu.show(apuMinute().current());
    QCOMPARE(titlesOf(menu),
             (QStringList{u"Memory"_s, u"GPU Memory"_s, u"GPU"_s, u"CPU"_s, u"NPU"_s, u"Swap"_s,
                          u"-"_s, u"Quit"_s}));
    for (int row = 0; row < 6; ++row)
        QVERIFY(!menu.actions().at(row)->isEnabled());
    menu.show(oneCardMinute().current());
    QCOMPARE(menu.actions().at(1)->text(), u"VRAM: 21.59 GB / 23.99 GB, 90 %"_s);
}

QTEST_MAIN(TestMetricMenu)
#include "tst_MetricMenu.moc"
