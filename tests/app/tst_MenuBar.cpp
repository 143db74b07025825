#include "app/MenuBar.h"

#include "app/Commands.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A key window that records the commands and accepts some of them.
struct RecordedKeyWindow {
    KeyWindow keyWindow()
    {
        return {
            .perform = [this](WindowCommand command) { performed.append(command); },
            .accepts = [this](WindowCommand command) { return accepted.contains(command); },
            .isFullScreen = [this] { return isFullScreen; },
            .registerMenus =
                [this](QMenu &windows, QMenu &help) {
                    registered = {windows.title(), help.title()};
                },
        };
    }

    QList<WindowCommand> accepted = {};
    QList<WindowCommand> performed = {};
    bool isFullScreen = false;
    QStringList registered = {};
};

/// Takes the keys of Copy and counts them, as a list or a chart does.
class CopyingView : public QWidget {
public:
    int copies = 0;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::ShortcutOverride
            && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy))
            event->accept();
        return QWidget::event(event);
    }
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->matches(QKeySequence::Copy))
            ++copies;
        else
            QWidget::keyPressEvent(event);
    }
};

QMenu *menuNamed(const QMenuBar &bar, const QString &title)
{
    for (const QAction *menu : bar.actions()) {
        if (menu->text() == title)
            return menu->menu();
    }
    return nullptr;
}

QAction *itemNamed(const QMenuBar &bar, const QString &text)
{
    for (const QAction *menu : bar.actions()) {
        for (QAction *item : menu->menu()->actions()) {
            if (item->text() == text)
                return item;
        }
    }
    return nullptr;
}

void open(QMenu &menu)
{
    emit menu.aboutToShow();
}

void close(QMenu &menu)
{
    emit menu.aboutToHide();
}

} // namespace

class TestMenuBar : public QObject {
    Q_OBJECT

private slots:
    void hasTheMenusOfAMac_data();
    void hasTheMenusOfAMac();
    void hasTheirStandardKeys_data();
    void hasTheirStandardKeys();
    void hasNoNewWindow();
    void sendsStandardCommandsToTheKeyWindow_data();
    void sendsStandardCommandsToTheKeyWindow();
    void disablesWhatTheKeyWindowDoesNotAccept();
    void keysWorkInAWindowThatGetsTheFocusLater();
    void namesTheWayOutOfFullScreen();
    void copiesFromTheViewWithTheFocus();
    void registersTheMenusThatTheSystemAddsTo();
};

void TestMenuBar::hasTheMenusOfAMac_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QStringList>("items");
    QTest::newRow("File, of which the system moves all but the first to the program's menu")
        << u"File"_s
        << QStringList{u"Close Window"_s, u"About Corvane"_s, u"Check for Updates…"_s,
                       u"Settings…"_s, u"Quit"_s};
    QTest::newRow("Edit") << u"Edit"_s << QStringList{u"Copy"_s, u"Select All"_s};
    QTest::newRow("View") << u"View"_s << QStringList{u"Charts of 1 min"_s,
                                                      u"Charts of 10 min"_s,
                                                      u"Charts of 1 hour"_s,
                                                      u"Charts of 1 day"_s,
                                                      u"-"_s,
                                                      u"Enter Full Screen"_s};
    QTest::newRow("Window") << u"Window"_s
                            << QStringList{u"Minimize"_s,    u"Zoom"_s, u"-"_s,
                                           u"Open Window"_s, u"-"_s,    u"Bring All to Front"_s};
    QTest::newRow("Help") << u"Help"_s << QStringList{u"Corvane Help"_s};
}

void TestMenuBar::hasTheMenusOfAMac()
{
    QFETCH(QString, menu);
    const Commands commands;
    const auto bar = makeMenuBar(commands);
    QStringList items;
    for (const QAction *item : menuNamed(*bar, menu)->actions())
        items.append(item->isSeparator() ? u"-"_s : item->text());
    QTEST(items, "items");
}

void TestMenuBar::hasTheirStandardKeys_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("keys"); // Ctrl is a Mac's Command, Meta its Control.
    QTest::newRow("close") << u"Close Window"_s << u"Ctrl+W"_s;
    QTest::newRow("copy") << u"Copy"_s << u"Ctrl+C"_s;
    QTest::newRow("select all") << u"Select All"_s << u"Ctrl+A"_s;
    QTest::newRow("full screen") << u"Enter Full Screen"_s << u"Meta+Ctrl+F"_s;
    QTest::newRow("minimize") << u"Minimize"_s << u"Ctrl+M"_s;
    QTest::newRow("zoom has none") << u"Zoom"_s << QString();
    QTest::newRow("settings") << u"Settings…"_s << u"Ctrl+,"_s;
    QTest::newRow("quit") << u"Quit"_s << u"Ctrl+Q"_s;
}

void TestMenuBar::hasTheirStandardKeys()
{
    QFETCH(QString, item);
    QFETCH(QString, keys);
    const Commands commands(nullptr, HostSystem::mac);
    const auto bar = makeMenuBar(commands);
    QCOMPARE(itemNamed(*bar, item)->shortcut(),
             QKeySequence::fromString(keys, QKeySequence::PortableText));
}

void TestMenuBar::hasNoNewWindow()
{
    const Commands commands;
    const auto bar = makeMenuBar(commands);
    for (const QAction *menu : bar->actions()) {
        for (const QAction *item : menu->menu()->actions()) {
            QVERIFY(!item->text().startsWith("New"_L1));
            QVERIFY(item->shortcut() != QKeySequence(Qt::CTRL | Qt::Key_N));
        }
    }
}

void TestMenuBar::sendsStandardCommandsToTheKeyWindow_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<WindowCommand>("command");
    QTest::newRow("close") << u"Close Window"_s << WindowCommand::close;
    QTest::newRow("copy") << u"Copy"_s << WindowCommand::copy;
    QTest::newRow("select all") << u"Select All"_s << WindowCommand::selectAll;
    QTest::newRow("full screen") << u"Enter Full Screen"_s << WindowCommand::fullScreen;
    QTest::newRow("minimize") << u"Minimize"_s << WindowCommand::minimize;
    QTest::newRow("zoom") << u"Zoom"_s << WindowCommand::zoom;
    QTest::newRow("front") << u"Bring All to Front"_s << WindowCommand::bringAllToFront;
}

void TestMenuBar::sendsStandardCommandsToTheKeyWindow()
{
    QFETCH(QString, item);
    QFETCH(WindowCommand, command);
    RecordedKeyWindow window;
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    itemNamed(*bar, item)->trigger();
    QCOMPARE(window.performed, QList{command});
}

void TestMenuBar::disablesWhatTheKeyWindowDoesNotAccept()
{
    RecordedKeyWindow window{.accepted = {WindowCommand::minimize}};
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    open(*menuNamed(*bar, u"Window"_s));
    QVERIFY(itemNamed(*bar, u"Minimize"_s)->isEnabled());
    QVERIFY(!itemNamed(*bar, u"Zoom"_s)->isEnabled());
    QVERIFY(itemNamed(*bar, u"Open Window"_s)->isEnabled());
    window.accepted = {WindowCommand::zoom};
    open(*menuNamed(*bar, u"Window"_s));
    QVERIFY(!itemNamed(*bar, u"Minimize"_s)->isEnabled());
    QVERIFY(itemNamed(*bar, u"Zoom"_s)->isEnabled());
}

void TestMenuBar::keysWorkInAWindowThatGetsTheFocusLater()
{
    RecordedKeyWindow window;
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    open(*menuNamed(*bar, u"File"_s));
    QVERIFY(!itemNamed(*bar, u"Close Window"_s)->isEnabled());
    close(*menuNamed(*bar, u"File"_s));
    QVERIFY(itemNamed(*bar, u"Close Window"_s)->isEnabled());
}

void TestMenuBar::namesTheWayOutOfFullScreen()
{
    RecordedKeyWindow window;
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    QMenu *view = menuNamed(*bar, u"View"_s);
    for (const bool isFullScreen : {true, false}) {
        window.isFullScreen = isFullScreen;
        open(*view);
        QCOMPARE(view->actions().last()->text(),
                 isFullScreen ? u"Exit Full Screen"_s : u"Enter Full Screen"_s);
    }
}

void TestMenuBar::copiesFromTheViewWithTheFocus()
{
    RecordedKeyWindow window;
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    QWidget top;
    auto *view = new CopyingView;
    view->setParent(&top);
    auto *plain = new QWidget(&top);
    top.show();
    top.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&top));

    view->setFocus();
    QMenu *edit = menuNamed(*bar, u"Edit"_s);
    open(*edit);
    QVERIFY(itemNamed(*bar, u"Copy"_s)->isEnabled());
    QCOMPARE(view->copies, 0);
    itemNamed(*bar, u"Copy"_s)->trigger();
    QCOMPARE(view->copies, 1);
    QVERIFY(window.performed.isEmpty());

    plain->setFocus();
    open(*edit);
    QVERIFY(!itemNamed(*bar, u"Copy"_s)->isEnabled());
}

void TestMenuBar::registersTheMenusThatTheSystemAddsTo()
{
    RecordedKeyWindow window;
    const Commands commands;
    const auto bar = makeMenuBar(commands, window.keyWindow());
    QCOMPARE(window.registered, (QStringList{u"Window"_s, u"Help"_s}));
}

QTEST_MAIN(TestMenuBar)
#include "tst_MenuBar.moc"
