#include "tray/RolelessActions.h"

#include <QAction>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestRolelessActions : public QObject {
    Q_OBJECT

private slots:
    void haveNoRole_data();
    void haveNoRole();
    void lookAsTheirOriginals();
    void followTheirOriginals();
    void triggerTheirOriginals();
    void doNothingWithoutTheirOriginals();
    void keepTheOrderAndTheSeparators();

private:
    /// The only copy of the original.
    QAction *copyOf(QAction &original) { return withoutRoles({&original}, &m_owner).front(); }

    QObject m_owner;
};

void TestRolelessActions::haveNoRole_data()
{
    QTest::addColumn<QAction::MenuRole>("role");
    QTest::newRow("by its text") << QAction::TextHeuristicRole;
    QTest::newRow("about") << QAction::AboutRole;
    QTest::newRow("of the program") << QAction::ApplicationSpecificRole;
    QTest::newRow("settings") << QAction::PreferencesRole;
    QTest::newRow("quit") << QAction::QuitRole;
}

void TestRolelessActions::haveNoRole()
{
    QFETCH(QAction::MenuRole, role);
    QAction original(u"Quit"_s);
    original.setMenuRole(role);
    QCOMPARE(copyOf(original)->menuRole(), QAction::NoRole);
    QCOMPARE(original.menuRole(), role);
}

void TestRolelessActions::lookAsTheirOriginals()
{
    QAction original(u"Check for Updates…"_s);
    original.setShortcut(Qt::CTRL | Qt::Key_U);
    original.setEnabled(false);
    original.setVisible(false);
    const QAction *copy = copyOf(original);
    QCOMPARE(copy->text(), original.text());
    QCOMPARE(copy->shortcut(), original.shortcut());
    QVERIFY(!copy->isEnabled());
    QVERIFY(!copy->isVisible());
}

void TestRolelessActions::followTheirOriginals()
{
    QAction original(u"Check for Updates…"_s);
    const QAction *copy = copyOf(original);
    original.setText(u"Corvane 2.0 Is Available…"_s);
    QCOMPARE(copy->text(), u"Corvane 2.0 Is Available…"_s);
    original.setEnabled(false);
    QVERIFY(!copy->isEnabled());
    original.setEnabled(true);
    QVERIFY(copy->isEnabled());
}

void TestRolelessActions::triggerTheirOriginals()
{
    QAction original(u"Quit"_s);
    const QSignalSpy triggered(&original, &QAction::triggered);
    copyOf(original)->trigger();
    QCOMPARE(triggered.count(), 1);
}

void TestRolelessActions::doNothingWithoutTheirOriginals()
{
    auto original = std::make_unique<QAction>(u"Quit"_s);
    QAction *copy = copyOf(*original);
    original.reset();
    copy->trigger();
    QCOMPARE(copy->text(), u"Quit"_s);
}

void TestRolelessActions::keepTheOrderAndTheSeparators()
{
    QAction first(u"First"_s);
    QAction separator;
    separator.setSeparator(true);
    QAction last(u"Last"_s);
    const auto copies = withoutRoles({&first, &separator, &last}, &m_owner);
    QCOMPARE(copies.size(), 3);
    QCOMPARE(copies[0]->text(), u"First"_s);
    QVERIFY(copies[1]->isSeparator());
    QCOMPARE(copies[2]->text(), u"Last"_s);
}

QTEST_MAIN(TestRolelessActions)
#include "tst_RolelessActions.moc"
