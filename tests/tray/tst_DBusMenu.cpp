#include "tray/DBusMenu_linux.h"

#include <QMenu>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

QStringList labels(const QList<DBusMenuItem> &items)
{
    QStringList texts;
    for (const DBusMenuItem &item : items)
        texts.append(item.properties.value(u"label"_s, u"-"_s).toString());
    return texts;
}

/// Of the menu's rows.
QStringList rowLabels(DBusMenu &menu)
{
    return labels(menu.layout(0, -1, {}).sliced(1));
}

} // namespace

class TestDBusMenu : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void marksAccessKeysByUnderscores_data();
    void marksAccessKeysByUnderscores();
    void showsTheActionsOfTheMenu();
    void showsNoChildrenAtDepthZero();
    void returnsOnlyTheNamedProperties();
    void answersUnknownIdsWithEmptyReplies();
    void aClickTriggersTheAction();
    void aClickOnADisabledActionDoesNothing();
    void emitsTheMenusSignalsWhenTheDesktopOpensAndClosesIt();
    void updatesTextsWhenTheDesktopReadsThem();
    void sendsNothingWhileClosed();
    void sendsEarlierChangesWhenItOpens();
    void sendsChangesTogetherWhileOpen();
    void announcesAddedAndRemovedActions();
    void closesTheMenuWhenDeleted();
    void answersRepeatedIdsOnce();
    void usesTheFirstEventsOfAGroup();

private:
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<DBusMenu> m_dbusMenu;
    QAction *m_row = nullptr;     ///< Id 1; disabled.
    QAction *m_command = nullptr; ///< Id 3.
};

void TestDBusMenu::init()
{
    m_menu = std::make_unique<QMenu>();
    m_row = m_menu->addAction(u"GPU: 41 %"_s);
    m_row->setEnabled(false);
    m_menu->addSeparator();
    m_command = m_menu->addAction(u"Quit"_s);
    m_dbusMenu = std::make_unique<DBusMenu>(*m_menu);
}

void TestDBusMenu::cleanup()
{
    m_dbusMenu.reset();
    m_menu.reset();
}

void TestDBusMenu::marksAccessKeysByUnderscores_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain text") << u"Open Window"_s << u"Open Window"_s;
    QTest::newRow("an access key") << u"&Quit"_s << u"_Quit"_s;
    QTest::newRow("a doubled ampersand is an ordinary one") << u"a && b"_s << u"a & b"_s;
    QTest::newRow("an underscore is doubled") << u"a_b"_s << u"a__b"_s;
    QTest::newRow("an ampersand at the end") << u"a&"_s << u"a_"_s;
    QTest::newRow("an empty text") << QString() << QString();
}

void TestDBusMenu::marksAccessKeysByUnderscores()
{
    QFETCH(QString, text);
    QTEST(dbusMenuLabel(text), "expected");
}

void TestDBusMenu::showsTheActionsOfTheMenu()
{
    const QList<DBusMenuItem> items = m_dbusMenu->layout(0, -1, {});
    QCOMPARE(items[0].id, 0);
    QCOMPARE(items[0].properties.value(u"children-display"_s), QVariant(u"submenu"_s));
    QCOMPARE(labels(items.sliced(1)), (QStringList{u"GPU: 41 %"_s, u"-"_s, u"Quit"_s}));
    QCOMPARE(items[1].properties.value(u"enabled"_s), QVariant(false));
    QCOMPARE(items[2].properties.value(u"type"_s), QVariant(u"separator"_s));
    QCOMPARE(items[3].properties.value(u"enabled"_s), QVariant(true));
}

void TestDBusMenu::showsNoChildrenAtDepthZero()
{
    QCOMPARE(m_dbusMenu->layout(0, 0, {}).size(), 1);
}

void TestDBusMenu::returnsOnlyTheNamedProperties()
{
    QCOMPARE(m_dbusMenu->layout(3, -1, {u"label"_s})[0].properties,
             (QVariantMap{{u"label"_s, u"Quit"_s}}));
    QCOMPARE(m_dbusMenu->itemProperty(3, u"label"_s), QVariant(u"Quit"_s));
    QCOMPARE(m_dbusMenu->groupProperties({}, {}).size(), 4);
    QCOMPARE(labels(m_dbusMenu->groupProperties({3}, {u"label"_s})), QStringList{u"Quit"_s});
}

void TestDBusMenu::answersUnknownIdsWithEmptyReplies()
{
    const QList<DBusMenuItem> items = m_dbusMenu->layout(99, -1, {});
    QCOMPARE(items.size(), 1);
    QVERIFY(items[0].properties.isEmpty());
    QCOMPARE(m_dbusMenu->itemProperty(99, u"label"_s), QVariant(QString()));
    QVERIFY(m_dbusMenu->groupProperties({99, -1}, {}).isEmpty());
    QVERIFY(!m_dbusMenu->aboutToShow(99));
    m_dbusMenu->takeEvent({99, u"clicked"_s});
    QCOMPARE(m_dbusMenu->takeEvents({{.id = 99, .type = u"clicked"_s}, {.id = 0}}), QList<int>{99});
    QList<int> unknown;
    QVERIFY(m_dbusMenu->aboutToShowGroup({0, 99}, unknown).isEmpty());
    QCOMPARE(unknown, QList<int>{99});
}

void TestDBusMenu::aClickTriggersTheAction()
{
    QSignalSpy triggered(m_command, &QAction::triggered);
    m_dbusMenu->takeEvent({3, u"clicked"_s});
    QTRY_COMPARE(triggered.count(), 1);
    m_dbusMenu->takeEvents({{.id = 3, .type = u"clicked"_s}});
    QTRY_COMPARE(triggered.count(), 2);
}

void TestDBusMenu::aClickOnADisabledActionDoesNothing()
{
    QSignalSpy triggered(m_row, &QAction::triggered);
    m_dbusMenu->takeEvent({1, u"clicked"_s});
    QCoreApplication::processEvents();
    QCOMPARE(triggered.count(), 0);
}

void TestDBusMenu::emitsTheMenusSignalsWhenTheDesktopOpensAndClosesIt()
{
    QSignalSpy opened(m_menu.get(), &QMenu::aboutToShow);
    QSignalSpy closed(m_menu.get(), &QMenu::aboutToHide);
    m_dbusMenu->takeEvent({0, u"opened"_s});
    m_dbusMenu->takeEvent({0, u"opened"_s});
    m_dbusMenu->layout(0, -1, {});
    QCOMPARE(opened.count(), 1);
    QCOMPARE(closed.count(), 0);
    m_dbusMenu->takeEvent({0, u"closed"_s});
    QCOMPARE(closed.count(), 1);
}

void TestDBusMenu::updatesTextsWhenTheDesktopReadsThem()
{
    connect(m_menu.get(), &QMenu::aboutToShow, this, [this] { m_row->setText(u"GPU: 90 %"_s); });
    QCOMPARE(rowLabels(*m_dbusMenu).value(0), u"GPU: 90 %"_s);
}

void TestDBusMenu::sendsNothingWhileClosed()
{
    QSignalSpy updated(m_dbusMenu.get(), &DBusMenu::propertiesUpdated);
    m_row->setText(u"GPU: 42 %"_s);
    QCoreApplication::processEvents();
    QCOMPARE(updated.count(), 0);
}

void TestDBusMenu::sendsEarlierChangesWhenItOpens()
{
    QSignalSpy updated(m_dbusMenu.get(), &DBusMenu::propertiesUpdated);
    QVERIFY(!m_dbusMenu->aboutToShow(0));
    m_command->setEnabled(false);
    QVERIFY(m_dbusMenu->aboutToShow(0));
    QVERIFY(!m_dbusMenu->aboutToShow(0));
    QCOMPARE(updated.count(), 1);
    QCOMPARE(labels(updated[0][0].value<QList<DBusMenuItem>>()), QStringList{u"Quit"_s});

    QList<int> unknown;
    m_command->setEnabled(true);
    QCOMPARE(m_dbusMenu->aboutToShowGroup({0, 1}, unknown), QList<int>{0});
    QCOMPARE(updated.count(), 2);

    m_row->setText(u"GPU: 42 %"_s);
    m_dbusMenu->takeEvent({0, u"opened"_s});
    QCOMPARE(updated.count(), 3);
}

void TestDBusMenu::sendsChangesTogetherWhileOpen()
{
    QSignalSpy updated(m_dbusMenu.get(), &DBusMenu::propertiesUpdated);
    m_dbusMenu->takeEvent({0, u"opened"_s});
    m_row->setText(u"GPU: 42 %"_s);
    m_command->setText(u"Leave"_s);
    QTRY_COMPARE(updated.count(), 1);
    QCOMPARE(labels(updated[0][0].value<QList<DBusMenuItem>>()),
             (QStringList{u"GPU: 42 %"_s, u"Leave"_s}));
}

void TestDBusMenu::announcesAddedAndRemovedActions()
{
    QSignalSpy changed(m_dbusMenu.get(), &DBusMenu::layoutUpdated);
    QAction *about = m_menu->addAction(u"About Corvane"_s);
    m_menu->removeAction(m_row);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(m_dbusMenu->revision(), changed[1][0].toUInt());
    QCOMPARE(rowLabels(*m_dbusMenu), (QStringList{u"-"_s, u"Quit"_s, u"About Corvane"_s}));

    delete about;
    m_dbusMenu->takeEvent({4, u"clicked"_s});
    QCOMPARE(rowLabels(*m_dbusMenu), (QStringList{u"-"_s, u"Quit"_s}));
}

void TestDBusMenu::closesTheMenuWhenDeleted()
{
    m_dbusMenu->takeEvent({0, u"opened"_s});
    QSignalSpy closed(m_menu.get(), &QMenu::aboutToHide);
    m_dbusMenu.reset();
    QCOMPARE(closed.count(), 1);
}

void TestDBusMenu::answersRepeatedIdsOnce()
{
    constexpr int many = 100'000;
    QCOMPARE(m_dbusMenu->groupProperties(QList<int>(many, 3), {u"label"_s}).size(), 1);
    QList<int> ids = QList<int>(many, 3) + QList<int>(many, 1);
    const auto items = m_dbusMenu->groupProperties(ids, {u"label"_s});
    QCOMPARE(items.size(), 2);
    QCOMPARE(items[0].id, 3);
    QCOMPARE(items[1].id, 1);
    const QSignalSpy shown(m_menu.get(), &QMenu::aboutToShow);
    QList<int> unknown;
    m_dbusMenu->aboutToShowGroup(QList<int>(many, 0) + QList<int>(many, 99), unknown);
    QCOMPARE(unknown, QList<int>{99});
    QCOMPARE(shown.count(), 1);
}

void TestDBusMenu::usesTheFirstEventsOfAGroup()
{
    const QSignalSpy clicks(m_command, &QAction::triggered);
    const DBusMenuEvent click{.id = 3, .type = u"clicked"_s};
    m_dbusMenu->takeEvents(QList<DBusMenuEvent>(3, click));
    QTRY_COMPARE(clicks.count(), 3);
    m_dbusMenu->takeEvents(QList<DBusMenuEvent>(100'000, click));
    QTRY_COMPARE(clicks.count(), 3 + 64);
}

QTEST_MAIN(TestDBusMenu)
#include "tst_DBusMenu.moc"
