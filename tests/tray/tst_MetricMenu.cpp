#include "tray/MetricMenu.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

SystemMetrics withGPU(double fraction)
{
    return {.chip = ChipReading{.gpuActiveFraction = fraction}};
}

} // namespace

class TestMetricMenu : public QObject {
    Q_OBJECT

private slots:
    void showsFiveRowsAndTheCommands();
    void rowsDoNotChangeWhileItIsClosed();
    void rowsFollowWhileItIsOpen();
    void rowsFollowUntilItIsClosedEverywhere();
};

void TestMetricMenu::showsFiveRowsAndTheCommands()
{
    QAction openWindow(u"Open Window"_s);
    QAction quit(u"Quit"_s);
    const MetricMenu menu({&openWindow, &quit});
    QStringList texts;
    for (const QAction *action : menu.actions())
        texts.append(action->isSeparator() ? u"-"_s : action->text().section(u':', 0, 0));
    QCOMPARE(texts,
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

QTEST_MAIN(TestMetricMenu)
#include "tst_MetricMenu.moc"
