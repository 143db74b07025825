#include "charts/CoreBars.h"
#include "ui/AccessibleValue.h"

#include <QAccessible>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// Counts how often its text is asked for.
class Gauge : public QWidget, public AccessibleValue {
public:
    QString accessibleValue() const override
    {
        ++asked;
        return u"42 W"_s;
    }
    void change() { announceChange(this); }

    mutable int asked = 0;
};

} // namespace

class TestAccessibleValue : public QObject {
    Q_OBJECT

private slots:
    void isNameAndValueForAScreenReader();
    void changesWithItsWidget();
    void makesNoTextWhileNobodyListens();
    void ordinaryWidgetsAreLeftAlone();
};

void TestAccessibleValue::isNameAndValueForAScreenReader()
{
    Gauge gauge;
    gauge.setAccessibleName(u"Power"_s);
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&gauge);
    QVERIFY(seen);
    QCOMPARE(seen->role(), QAccessible::Chart);
    QCOMPARE(seen->text(QAccessible::Name), u"Power"_s);
    QCOMPARE(seen->text(QAccessible::Value), u"42 W"_s);
    QCOMPARE(seen->text(QAccessible::Description), u"42 W"_s);
}

void TestAccessibleValue::changesWithItsWidget()
{
    CoreBars bars;
    bars.show({.values = {0.25}});
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&bars);
    QCOMPARE(seen->text(QAccessible::Value), u"0: 25%"_s);
    bars.show({.values = {0.75}});
    QCOMPARE(seen->text(QAccessible::Value), u"0: 75%"_s);
}

void TestAccessibleValue::makesNoTextWhileNobodyListens()
{
    Gauge gauge;
    gauge.change();
    QCOMPARE(gauge.asked, 0);
    QAccessible::setActive(true);
    gauge.change();
    gauge.change();
    QCOMPARE(gauge.asked, 2);
    QAccessible::setActive(false);
    gauge.change();
    QCOMPARE(gauge.asked, 2);
}

void TestAccessibleValue::ordinaryWidgetsAreLeftAlone()
{
    QWidget plain;
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&plain);
    QVERIFY(seen);
    QVERIFY(seen->role() != QAccessible::Chart);
    QCOMPARE(seen->text(QAccessible::Value), QString());
}

QTEST_MAIN(TestAccessibleValue)
#include "tst_AccessibleValue.moc"
