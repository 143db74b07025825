#include "app/AboutPanel.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QPointer>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

AboutTexts someTexts()
{
    return {.name = u"Corvane"_s,
            .version = u"2.3"_s,
            .build = u"45"_s,
            .credits = u"One line.\n\nAnother."_s,
            .copyright = u"© Somebody"_s};
}

QList<AboutPanel *> panels()
{
    QList<AboutPanel *> found;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *panel = qobject_cast<AboutPanel *>(widget))
            found.append(panel);
    }
    return found;
}

} // namespace

class TestAboutPanel : public QObject {
    Q_OBJECT

private slots:
    void hasItsTextsForScreenReaders();
    void isFixedInSize();
    void everyLineIsCentred_data();
    void everyLineIsCentred();
    void closesOnAKey_data();
    void closesOnAKey();
    void copiesItsText();
    void hasAMenuToCopyItsText();
    void isShownOnce();
};

void TestAboutPanel::hasItsTextsForScreenReaders()
{
    AboutPanel panel(someTexts());
    QCOMPARE(panel.windowTitle(), u"About Corvane"_s);
    QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&panel);
    QStringList names;
    for (int i = 0; i < seen->childCount(); ++i)
        names.append(seen->child(i)->text(QAccessible::Name));
    QCOMPARE(names,
             QStringList({u"Corvane"_s, u"Version 2.3 (45)"_s, u"One line."_s, u"Another."_s,
                          u"© Somebody"_s}));
}

void TestAboutPanel::isFixedInSize()
{
    const AboutPanel panel;
    QCOMPARE(panel.minimumSize(), QSize(300, 300));
    QCOMPARE(panel.maximumSize(), QSize(300, 300));
}

void TestAboutPanel::everyLineIsCentred_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("top");
    QTest::addColumn<int>("bottom");
    for (const double scale : {1.0, 2.0}) {
        QTest::addRow("the logo at scale %g", scale) << scale << 26 << 98;
        QTest::addRow("the name at scale %g", scale) << scale << 115 << 129;
        QTest::addRow("the version at scale %g", scale) << scale << 137 << 150;
        QTest::addRow("the credits at scale %g", scale) << scale << 166 << 179;
        QTest::addRow("the copyright line at scale %g", scale) << scale << 268 << 279;
    }
}

void TestAboutPanel::everyLineIsCentred()
{
    QFETCH(double, scale);
    QFETCH(int, top);
    QFETCH(int, bottom);
    AboutPanel panel(AboutTexts::current({u"0.1.0"_s, u"1"_s}, HostSystem::mac));
    const QImage picture = rendered(panel, scale);
    double left = 300;
    double right = 0;
    for (double y = top; y < bottom; y += 1 / scale) {
        for (double x = 0; x < 300; x += 1 / scale) {
            if (pixelAt(picture, x, y).lightness() < 60)
                continue;
            left = std::min(left, x);
            right = std::max(right, x + 1 / scale);
        }
    }
    QVERIFY2(left < right, "there is something");
    QVERIFY2(std::abs((left + right) / 2 - 150) <= 2,
             qPrintable(u"from %1 to %2"_s.arg(left).arg(right)));
}

void TestAboutPanel::closesOnAKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Escape") << int(Qt::Key_Escape) << Qt::KeyboardModifiers();
    QTest::newRow("Control and W") << int(Qt::Key_W) << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void TestAboutPanel::closesOnAKey()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    showAboutPanel();
    const QPointer<AboutPanel> panel = panels().first();
    QVERIFY(QTest::qWaitForWindowActive(panel));
    QTest::keyClick(panel, Qt::Key(key), modifiers);
    QTRY_VERIFY(!panel);
}

void TestAboutPanel::copiesItsText()
{
    AboutPanel panel(someTexts());
    panel.show();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    QTest::keySequence(&panel, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             u"Corvane\nVersion 2.3 (45)\nOne line.\n\nAnother.\n© Somebody"_s);
}

void TestAboutPanel::hasAMenuToCopyItsText()
{
    AboutPanel panel(someTexts());
    panel.show();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {150, 150},
                            panel.mapToGlobal(QPoint(150, 150)));
    QCoreApplication::sendEvent(&panel, &event);
    const auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions().size(), 1);
    QCOMPARE(menu->actions().first()->text(), u"Copy"_s);
}

void TestAboutPanel::isShownOnce()
{
    showAboutPanel();
    panels().first()->showMinimized();
    showAboutPanel();
    QCOMPARE(panels().size(), 1);
    QVERIFY(!panels().first()->isMinimized());
    panels().first()->close();
    QTRY_VERIFY(panels().isEmpty());
    showAboutPanel();
    QCOMPARE(panels().size(), 1);
    delete panels().first();
}

QTEST_MAIN(TestAboutPanel)
#include "tst_AboutPanel.moc"
