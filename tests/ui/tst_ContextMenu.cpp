#include "ui/ContextMenu.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestContextMenu : public QObject {
    Q_OBJECT

private slots:
    void showsTheWidgetsActionsAndDeletesItself();
    void aWidgetWithoutActionsHasNoMenu();
};

void TestContextMenu::showsTheWidgetsActionsAndDeletesItself()
{
    QWidget widget;
    QAction first(u"First"_s);
    QAction second(u"Second"_s);
    widget.addActions({&first, &second});
    widget.show();
    const QPointer<QMenu> menu = popUpActions(widget, {20, 30});
    QVERIFY(menu);
    QCOMPARE(menu->pos(), QPoint(20, 30));
    QCOMPARE(menu->actions(), (QList<QAction *>{&first, &second}));

    const QSignalSpy triggered(&second, &QAction::triggered);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(&second).center());
    QCOMPARE(triggered.count(), 1);
    QTRY_VERIFY(!menu);
}

void TestContextMenu::aWidgetWithoutActionsHasNoMenu()
{
    QWidget widget;
    QCOMPARE(popUpActions(widget, {}), nullptr);
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
}

QTEST_MAIN(TestContextMenu)
#include "tst_ContextMenu.moc"
