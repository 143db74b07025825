#include "controls/AccessibleWidget.h"

#include <QAccessible>
#include <QPushButton>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

class Numbers : public AccessibleWidget {
public:
    std::vector<AccessibleText> accessibleTexts() const override { return texts; }
    void announce(int index) { announceText(index); }

    std::vector<AccessibleText> texts = {{u"Load"_s, u"48%"_s, QRectF(10, 20, 30, 10)},
                                         {{}, u"P12"_s, QRectF(10, 40, 30, 10)}};
};

/// A widget with a value that counts how often the value is read.
class Gauge : public AccessibleWidget {
public:
    Gauge() : AccessibleWidget(nullptr, QAccessible::Chart) { }

    QString accessibleValue() const override
    {
        ++reads;
        return u"42 W"_s;
    }
    void announce() { announceValue(); }

    mutable int reads = 0;
};

} // namespace

class TestAccessibleWidget : public QObject {
    Q_OBJECT

private slots:
    void hasItsTextsAsChildren();
    void hasItsChildWidgetsAfterItsTexts();
    void childrenFollowTheTexts();
    void findsTextsByPlace();
    void textsHaveNoChildren();
    void textsEndWithTheWidget();
    void hasAValue();
    void readsNoValueWithoutAScreenReader();
    void leavesOtherWidgetsAlone();
};

void TestAccessibleWidget::hasItsTextsAsChildren()
{
    Numbers numbers;
    numbers.setAccessibleName(u"CPU"_s);
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(&numbers);
    QCOMPARE(whole->role(), QAccessible::Grouping);
    QCOMPARE(whole->text(QAccessible::Name), u"CPU"_s);
    QCOMPARE(whole->childCount(), 2);
    QAccessibleInterface *load = whole->child(0);
    QCOMPARE(load->role(), QAccessible::StaticText);
    QCOMPARE(load->text(QAccessible::Name), u"Load: 48%"_s);
    QCOMPARE(load->text(QAccessible::Value), u"48%"_s);
    QCOMPARE(load->parent(), whole);
    QCOMPARE(whole->child(1)->text(QAccessible::Name), u"P12"_s);
    QCOMPARE(whole->indexOfChild(whole->child(1)), 1);
    QCOMPARE(whole->child(2), nullptr);
    QCOMPARE(whole->child(-1), nullptr);
}

void TestAccessibleWidget::hasItsChildWidgetsAfterItsTexts()
{
    Numbers numbers;
    QPushButton button(u"Info"_s, &numbers);
    numbers.show();
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(&numbers);
    QCOMPARE(whole->childCount(), 3);
    QCOMPARE(whole->child(2)->object(), &button);
    QCOMPARE(whole->indexOfChild(whole->child(2)), 2);
}

void TestAccessibleWidget::childrenFollowTheTexts()
{
    Numbers numbers;
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(&numbers);
    QAccessibleInterface *second = whole->child(1);
    numbers.texts[0].value = u"50%"_s;
    numbers.announce(0);
    QCOMPARE(whole->child(0)->text(QAccessible::Value), u"50%"_s);
    numbers.texts.pop_back();
    QCOMPARE(whole->childCount(), 1);
    QVERIFY(!second->isValid());
    QCOMPARE(second->text(QAccessible::Name), QString());
    QCOMPARE(second->rect(), QRect());
}

void TestAccessibleWidget::findsTextsByPlace()
{
    Numbers numbers;
    numbers.resize(100, 100);
    numbers.show();
    QAccessibleInterface *whole = QAccessible::queryAccessibleInterface(&numbers);
    const QPoint origin = numbers.mapToGlobal(QPoint(0, 0));
    QCOMPARE(whole->childAt(origin.x() + 15, origin.y() + 45), whole->child(1));
    QCOMPARE(whole->childAt(origin.x() + 80, origin.y() + 80), nullptr);
    QCOMPARE(whole->child(0)->rect(), QRect(origin + QPoint(10, 20), QSize(30, 10)));
}

void TestAccessibleWidget::textsHaveNoChildren()
{
    Numbers numbers;
    numbers.show();
    QAccessibleInterface *load = QAccessible::queryAccessibleInterface(&numbers)->child(0);
    QCOMPARE(load->childCount(), 0);
    QCOMPARE(load->child(0), nullptr);
    QCOMPARE(load->childAt(load->rect().x(), load->rect().y()), nullptr);
    QCOMPARE(load->indexOfChild(load), -1);
    QCOMPARE(load->object(), nullptr);
    QCOMPARE(load->text(QAccessible::Help), QString());
    load->setText(QAccessible::Value, u"49%"_s);
    QCOMPARE(load->text(QAccessible::Value), u"48%"_s);
    QVERIFY(load->state().readOnly);
    QVERIFY(!load->state().invisible);
    numbers.hide();
    QVERIFY(load->state().invisible);
}

void TestAccessibleWidget::textsEndWithTheWidget()
{
    QAccessible::Id id = 0;
    {
        Numbers numbers;
        QAccessibleInterface *text = QAccessible::queryAccessibleInterface(&numbers)->child(0);
        id = QAccessible::uniqueId(text);
        QVERIFY(QAccessible::accessibleInterface(id));
    }
    QVERIFY(!QAccessible::accessibleInterface(id));
}

void TestAccessibleWidget::hasAValue()
{
    Gauge gauge;
    gauge.setAccessibleName(u"Power"_s);
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&gauge);
    QCOMPARE(seen->role(), QAccessible::Chart);
    QCOMPARE(seen->text(QAccessible::Name), u"Power"_s);
    QCOMPARE(seen->text(QAccessible::Value), u"42 W"_s);
    QCOMPARE(seen->text(QAccessible::Description), u"42 W"_s);
    QCOMPARE(seen->childCount(), 0);
}

void TestAccessibleWidget::readsNoValueWithoutAScreenReader()
{
    Gauge gauge;
    gauge.announce();
    QCOMPARE(gauge.reads, 0);
    QAccessible::setActive(true);
    gauge.announce();
    gauge.announce();
    QCOMPARE(gauge.reads, 2);
    QAccessible::setActive(false);
    gauge.announce();
    QCOMPARE(gauge.reads, 2);
}

void TestAccessibleWidget::leavesOtherWidgetsAlone()
{
    QWidget plain;
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&plain);
    QVERIFY(seen);
    QVERIFY(seen->role() != QAccessible::Grouping);
    QCOMPARE(seen->text(QAccessible::Value), QString());
}

QTEST_MAIN(TestAccessibleWidget)
#include "tst_AccessibleWidget.moc"
