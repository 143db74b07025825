#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "tray/StatusItem_mac.h"

#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::simulated;

using Messages = std::vector<std::string>;

namespace {

constexpr StatusColor plate{0.1, 0.2, 0.3, 0.9};

const std::vector<StatusRun> threeNumbers{
    {"63", {0.2, 0.8, 0.55, 1}, 5}, {"41", {1, 0.58, 0.16, 1}, 5}, {"12W", {1, 0.85, 0.3, 1}, 0}};

StatusActions noActions()
{
    return {.open = [](const StatusPlace &) {}, .menu = []() -> void * { return nullptr; }};
}

} // namespace

class TestStatusItemOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isAsWideAsItsText();
    void drawsItsTextAlone_data();
    void drawsItsTextAlone();
    void drawsItAnewWhenTheBarChanges();
    void tellsItsValueOnlyWhenItChanges();
    void emptiesItsPool();
    void opensAtItsPlace_data();
    void opensAtItsPlace();
    void showsItsMenuThroughTheItem_data();
    void showsItsMenuThroughTheItem();
    void canBeDeletedByItsActions();
    void isRemovedAtItsEnd();
};

void TestStatusItemOnMac::init()
{
    resetDesktop();
}

void TestStatusItemOnMac::isAsWideAsItsText()
{
    const StatusItem item(noActions(), plate);
    QVERIFY((takeMessages()
             == Messages{"NSStatusBar statusItemWithLength:-1",
                         "NSStatusBarButton setAccessibilityTitle:Corvane",
                         "NSStatusBarButton setAccessibilityLabel:Corvane"}));
}

void TestStatusItemOnMac::drawsItsTextAlone_data()
{
    QTest::addColumn<bool>("isLight");
    QTest::addColumn<std::string>("size");
    QTest::addColumn<Messages>("drawn");
    // Seven characters of 6.7 points.
    QTest::newRow("a dark bar: the text alone")
        << false << std::string("47 18") << Messages{"draw text at 0, 2"};
    QTest::newRow("a light bar: on a plate of 18 points with 6 on both sides")
        << true << std::string("59 18")
        << Messages{"fill with 0.1 0.2 0.3 0.9", "fill rounded 0 0 59 18 5 5", "draw text at 6, 2"};
}

void TestStatusItemOnMac::drawsItsTextAlone()
{
    QFETCH(bool, isLight);
    QFETCH(std::string, size);
    QFETCH(Messages, drawn);
    desktop().barIsLight = isLight;
    StatusItem item(noActions(), plate);
    item.show(threeNumbers, "Memory 63 %");
    takeMessages();
    QCOMPARE(drawItem(), size);
    QVERIFY(takeMessages() == drawn);
}

void TestStatusItemOnMac::drawsItAnewWhenTheBarChanges()
{
    StatusItem item(noActions(), plate);
    makeBarLight(true); // Before there is a text.
    item.show(threeNumbers, "Memory 63 %");
    QCOMPARE(drawItem(), std::string("59 18"));
    makeBarLight(false);
    QCOMPARE(drawItem(), std::string("47 18"));
}

void TestStatusItemOnMac::tellsItsValueOnlyWhenItChanges()
{
    StatusItem item(noActions(), plate);
    takeMessages();
    item.show(threeNumbers, "Memory 63 %");
    QVERIFY((takeMessages()
             == Messages{"NSStatusBarButton setImage: in 1 pools",
                         "NSStatusBarButton setAccessibilityValue:Memory 63 %",
                         "NSStatusBarButton setToolTip:Memory 63 %"}));
    item.show(threeNumbers, "Memory 63 %");
    QVERIFY((takeMessages() == Messages{"NSStatusBarButton setImage: in 1 pools"}));
    item.show(threeNumbers, "Memory 64 %");
    QCOMPARE(takeMessages().size(), 3U);
}

void TestStatusItemOnMac::emptiesItsPool()
{
    StatusItem item(noActions(), plate);
    item.show(threeNumbers, "Memory 63 %");
    QCOMPARE(openPools(), 0);
}

void TestStatusItemOnMac::opensAtItsPlace_data()
{
    QTest::addColumn<ItemClick>("click");
    QTest::newRow("a click") << ItemClick::left;
    QTest::newRow("a press through the accessibility interface") << ItemClick::accessibility;
}

void TestStatusItemOnMac::opensAtItsPlace()
{
    QFETCH(ItemClick, click);
    StatusPlace opened;
    const StatusItem item({.open = [&](const StatusPlace &place) { opened = place; }, .menu = {}},
                          plate);
    QVERIFY(clickItem(click));
    QCOMPARE(opened.middle, 640.0);
    QCOMPARE(opened.bottom, 876.0);
    QCOMPARE(opened.primaryScreenHeight, 900.0);
}

void TestStatusItemOnMac::showsItsMenuThroughTheItem_data()
{
    QTest::addColumn<ItemClick>("click");
    QTest::newRow("the right button") << ItemClick::right;
    QTest::newRow("with Control held") << ItemClick::withControl;
}

/// So that the system places the menu and marks the item.
void TestStatusItemOnMac::showsItsMenuThroughTheItem()
{
    QFETCH(ItemClick, click);
    const StatusItem item(
        {.open = [](const StatusPlace &) { QFAIL("no panel"); }, .menu = [] { return makeMenu(); }},
        plate);
    takeMessages();
    QVERIFY(clickItem(click));
    QVERIFY((takeMessages()
             == Messages{"NSStatusItem setMenu:NSMenu", "NSStatusBarButton performClick:nil",
                         "NSStatusItem setMenu:nil"}));
}

void TestStatusItemOnMac::canBeDeletedByItsActions()
{
    std::unique_ptr<StatusItem> item;
    const std::string text(100, 'x'); // Longer than what a function keeps inside itself.
    std::string seen;
    item = std::make_unique<StatusItem>(StatusActions{.open =
                                                          [&, text](const StatusPlace &) {
                                                              item.reset();
                                                              seen = text;
                                                          },
                                                      .menu = {}},
                                        plate);
    QVERIFY(clickItem(ItemClick::left));
    QCOMPARE(seen, text);
    QVERIFY(!clickItem(ItemClick::left));
}

void TestStatusItemOnMac::isRemovedAtItsEnd()
{
    {
        const StatusItem item(noActions(), plate);
        takeMessages();
    }
    QVERIFY((takeMessages() == Messages{"NSStatusBar removeStatusItem:NSStatusItem"}));
    makeBarLight(true); // Nobody observes it any more.
    QVERIFY(takeMessages().empty());
}

QTEST_GUILESS_MAIN(TestStatusItemOnMac)
#include "tst_StatusItem_mac.moc"
