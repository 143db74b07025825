#include "settings/SettingsTabs.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// The tabs of the settings, shown.
struct Shown {
    Shown()
    {
        tabs.addTab(u"gearshape"_s, u"General"_s);
        tabs.addTab(u"arrow.down.circle"_s, u"Updates"_s);
        tabs.resize(tabs.sizeHint());
        tabs.show();
    }

    SettingsTabs tabs;
};

} // namespace

class TestSettingsTabs : public QObject {
    Q_OBJECT

private slots:
    void haveTheirSize();
    void areSelectedByArrowKeysAndClicks();
    void areTabsForScreenReaders();
    void theSelectedOneHasABackground_data();
    void theSelectedOneHasABackground();
    void theSelectedOneShowsTheFocus();
};

void TestSettingsTabs::haveTheirSize()
{
    const Shown shown;
    QCOMPARE(shown.tabs.size(), QSize(176, 55));
    QCOMPARE(shown.tabs.tabRect(1), QRect(88, 0, 88, 55));
}

void TestSettingsTabs::areSelectedByArrowKeysAndClicks()
{
    Shown shown;
    QCOMPARE(shown.tabs.currentIndex(), 0);
    QTest::keyClick(&shown.tabs, Qt::Key_Right);
    QCOMPARE(shown.tabs.currentIndex(), 1);
    QTest::keyClick(&shown.tabs, Qt::Key_Left);
    QCOMPARE(shown.tabs.currentIndex(), 0);
    QTest::mouseClick(&shown.tabs, Qt::LeftButton, {}, {100, 20});
    QCOMPARE(shown.tabs.currentIndex(), 1);
}

void TestSettingsTabs::areTabsForScreenReaders()
{
    Shown shown;
    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&shown.tabs);
    QCOMPARE(list->role(), QAccessible::PageTabList);
    QCOMPARE(list->child(0)->role(), QAccessible::PageTab);
    QCOMPARE(list->child(0)->text(QAccessible::Name), u"General"_s);
    QCOMPARE(list->child(1)->text(QAccessible::Name), u"Updates"_s);
}

void TestSettingsTabs::theSelectedOneHasABackground_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("at scale 1") << 1.0;
    QTest::newRow("at scale 2") << 2.0;
}

void TestSettingsTabs::theSelectedOneHasABackground()
{
    QFETCH(double, scale);
    Shown shown;
    for (const int chosen : {0, 1}) {
        shown.tabs.setCurrentIndex(chosen);
        const QImage picture = rendered(shown.tabs, scale);
        const double left = chosen * 88;
        QVERIFY(isClose(pixelAt(picture, left + 10, 20), Theme::chosenTab));
        QCOMPARE(pixelAt(picture, left + 1, 20).alpha(), 0);
        QCOMPARE(pixelAt(picture, left + 44, 4).alpha(), 0);
        QCOMPARE(pixelAt(picture, left + 44, 50).alpha(), 0);
        QCOMPARE(pixelAt(picture, 88 - left + 10, 20).alpha(), 0);
    }
}

void TestSettingsTabs::theSelectedOneShowsTheFocus()
{
    QWidget window;
    QWidget other(&window);
    Shown shown;
    shown.tabs.setParent(&window);
    shown.tabs.show();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const auto edge = [&shown](int tab) {
        return pixelAt(rendered(shown.tabs, 1), tab * 88 + 44, 6);
    };
    for (const int chosen : {0, 1}) {
        shown.tabs.setCurrentIndex(chosen);
        other.setFocus();
        const QColor without = edge(chosen);
        shown.tabs.setFocus();
        QVERIFY(!isClose(edge(chosen), without, 10));
        QCOMPARE(edge(1 - chosen).alpha(), 0);
    }
}

QTEST_MAIN(TestSettingsTabs)
#include "tst_SettingsTabs.moc"
