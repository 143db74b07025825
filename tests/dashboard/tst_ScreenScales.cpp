#include "cards/Card.h"
#include "charts/Sparkline.h"
#include "controls/InfoButton.h"
#include "controls/WindowBackground.h"
#include "dashboard/MainWindow.h"
#include "gallery/ScriptedSamples.h"
#include "lists/RowList.h"
#include "support/Rendering.h"
#include "ui/ContentArea.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QScreen>
#include <QTemporaryFile>
#include <QTest>

#include <cmath>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const ChipInfo chip{.name = u"Chip"_s, .cpuMaxW = 36, .gpuMaxW = 56, .aneMaxW = 8};

constexpr std::array scales{1.0, 1.25, 1.5, 2.0};

/// What the offscreen platform reads its screens from: one of each scale, side by side.
QByteArray screenList()
{
    QJsonArray screens;
    int left = 0;
    for (const double scale : scales) {
        screens.append(QJsonObject{{"name"_L1, u"scale %1"_s.arg(scale)},
                                   {"x"_L1, left},
                                   {"y"_L1, 0},
                                   {"width"_L1, 6000},
                                   {"height"_L1, 4000},
                                   {"logicalDpi"_L1, 96},
                                   {"logicalBaseDpi"_L1, 96},
                                   {"dpr"_L1, scale}});
        left += 10000;
    }
    return QJsonDocument(QJsonObject{{"screens"_L1, screens}}).toJson();
}

/// The left and right edges of a card in its window, in device pixels, as its fractions say.
std::pair<int, int> thirdEdges(int windowWidth, int column, double scale)
{
    const double width = (windowWidth - 32 - 28) / 3.0;
    const double left = 16 + column * (width + 14);
    return {static_cast<int>(std::round(left * scale)),
            static_cast<int>(std::round((left + width) * scale))};
}

/// How much a pixel of the first row is lighter than the window's background there.
int lightness(const QImage &picture, const QImage &background, int x)
{
    return picture.pixelColor(x, 0).green() - background.pixelColor(x, 0).green();
}

/// Where the contents of all visible parts lie in the window.
QList<QRectF> placesOfParts(const MainWindow &window)
{
    QList<QRectF> places;
    for (const QWidget *part : window.findChildren<QWidget *>()) {
        const QPoint origin = part->mapTo(&window, QPoint(0, 0));
        if (part->isVisible())
            places.append(contentArea(*part).translated(origin));
    }
    return places;
}

} // namespace

/// The dashboard on screens of all scales, and on its way from one to another.
class TestScreenScales : public QObject {
    Q_OBJECT

private slots:
    void init();
    void edgesLieOnDevicePixels_data();
    void edgesLieOnDevicePixels();
    void contentsFollowTheEdges();
    void partsFollowToAnotherScreen();
    void menusStayOnTheScreen_data();
    void menusStayOnTheScreen();

private:
    /// The three cards of the second row.
    std::array<Card *, 3> thirds() const;
    void moveTo(double scale) const;

    std::unique_ptr<MainWindow> m_window;
};

void TestScreenScales::init()
{
    m_window = std::make_unique<MainWindow>(nullptr, chip);
    m_window->QWidget::show();
    m_window->show(scriptedCurrent(), scriptedHistory());
    QCoreApplication::processEvents();
}

std::array<Card *, 3> TestScreenScales::thirds() const
{
    std::array<Card *, 3> cards = {};
    for (Card *card : m_window->findChildren<Card *>()) {
        const QStringList titles{u"CPU"_s, u"GPU"_s, u"Neural Engine"_s};
        const auto index = titles.indexOf(card->heading().title);
        if (index >= 0)
            cards[static_cast<std::size_t>(index)] = card;
    }
    return cards;
}

void TestScreenScales::moveTo(double scale) const
{
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen->devicePixelRatio() == scale)
            m_window->move(screen->geometry().topLeft());
    }
    QCoreApplication::processEvents();
    QCOMPARE(m_window->devicePixelRatioF(), scale);
}

void TestScreenScales::edgesLieOnDevicePixels_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QSize>("size");
    for (const double scale : scales) {
        for (const QSize &size :
             {QSize(920, 760), QSize(1280, 900), QSize(1281, 901), QSize(2560, 1440)})
            QTest::addRow("%d x %d at scale %g", size.width(), size.height(), scale)
                << scale << size;
    }
}

void TestScreenScales::edgesLieOnDevicePixels()
{
    QFETCH(double, scale);
    QFETCH(QSize, size);
    moveTo(scale);
    m_window->resize(size);
    QCoreApplication::processEvents();
    const std::array<Card *, 3> cards = thirds();
    const int top = cards[0]->geometry().center().y() / 4 * 4; // On a pixel at every scale.
    const QImage picture = m_window->grab(QRect(0, top, size.width(), 4)).toImage();
    QCOMPARE(picture.devicePixelRatio(), scale);
    const QImage background =
        windowBackground((QSizeF(size) * scale).toSize(),
                         QRect(QPoint(0, static_cast<int>(top * scale)), picture.size()));
    for (int column = 0; column < 3; ++column) {
        const auto [left, right] = thirdEdges(size.width(), column, scale);
        QCOMPARE_LE(lightness(picture, background, left - 1), 1);
        QCOMPARE_GE(lightness(picture, background, left), 20); // The whole stroke.
        QCOMPARE_GE(lightness(picture, background, right - 1), 20);
        QCOMPARE_LE(lightness(picture, background, right), 1);
    }
}

/// At scale 2 in a window of 1,280 points the second card begins at 436.5.
void TestScreenScales::contentsFollowTheEdges()
{
    moveTo(2);
    m_window->resize(1280, 900);
    const Card *gpu = thirds()[1];
    const QRectF card = contentArea(*gpu).translated(gpu->pos());
    QCOMPARE(card, QRectF(436.5, 340, 407, 226));
    const auto *chart = gpu->findChild<Sparkline *>();
    const QPointF origin = chart->mapTo(m_window.get(), QPoint(0, 0));
    QCOMPARE(contentArea(*chart).translated(origin), QRectF(452.5, 450, 375, 100));
    const auto *info = gpu->findChild<InfoButton *>();
    const QPointF corner = info->mapTo(m_window.get(), QPointF(contentArea(*info).topLeft()));
    QCOMPARE(corner.x() + InfoButton::glyph().right(), 827.5);
    QCOMPARE(gpu->accessibleTexts().front().place.left() + gpu->x(),
             gpu->texts().front().bounds().left() + 436.5);
}

void TestScreenScales::partsFollowToAnotherScreen()
{
    m_window->resize(1280, 900);
    for (const double scale : {1.0, 2.0, 1.25, 1.0}) {
        moveTo(scale);
        MainWindow fresh(nullptr, chip);
        fresh.move(m_window->pos());
        fresh.resize(1280, 900);
        fresh.QWidget::show();
        fresh.show(scriptedCurrent(), scriptedHistory());
        QCoreApplication::processEvents();
        QCOMPARE(placesOfParts(*m_window), placesOfParts(fresh));
    }
}

void TestScreenScales::menusStayOnTheScreen_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QSize>("size");
    for (const double scale : {1.25, 2.0}) {
        for (const QSize &size : {QSize(920, 760), QSize(1280, 900), QSize(2560, 1440)})
            QTest::addRow("%d x %d at scale %g", size.width(), size.height(), scale)
                << scale << size;
    }
}

/// In a window in the lower right corner of its screen: the menu of the window at its four corners,
/// and that of a chart, a list and its rows at their lower right corners.
void TestScreenScales::menusStayOnTheScreen()
{
    QFETCH(double, scale);
    QFETCH(QSize, size);
    moveTo(scale);
    m_window->resize(size);
    const QRect screen = m_window->screen()->availableGeometry();
    m_window->move(m_window->pos() + screen.bottomRight() - m_window->geometry().bottomRight());
    QCoreApplication::processEvents();
    QAction settings(u"Settings…"_s);
    settings.setShortcut(Qt::CTRL | Qt::Key_Comma);
    QAction separator;
    separator.setSeparator(true);
    QAction quit(u"Quit"_s);
    m_window->addActions({&settings, &separator, &quit});

    const QRect all = m_window->rect();
    std::vector<std::pair<QWidget *, QPoint>> places;
    for (const QPoint &corner :
         {all.topLeft(), all.topRight(), all.bottomLeft(), all.bottomRight()})
        places.emplace_back(m_window.get(), corner);
    for (QWidget *part : {static_cast<QWidget *>(m_window->findChildren<Sparkline *>().last()),
                          static_cast<QWidget *>(m_window->findChildren<RowList *>().last())})
        places.emplace_back(part, part->rect().bottomRight());
    for (const auto &[widget, place] : places) {
        QContextMenuEvent click(QContextMenuEvent::Mouse, place, widget->mapToGlobal(place));
        QCoreApplication::sendEvent(widget, &click);
        const std::unique_ptr<QMenu> menu(qobject_cast<QMenu *>(QApplication::activePopupWidget()));
        QVERIFY(menu);
        QVERIFY(screen.contains(menu->geometry()));
        QCOMPARE(menu->screen(), m_window->screen());
        QCOMPARE(menu->actions().first()->text(),
                 widget == m_window.get() ? u"Settings…" : u"Copy");
        for (QAction *action : menu->actions())
            QCOMPARE(menu->actionGeometry(action).height(), action->isSeparator() ? 9 : 24);
    }
}

int main(int argc, char **argv)
{
    QTemporaryFile screens;
    if (!screens.open())
        return 1;
    screens.write(screenList());
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    QApplication application(argc, argv);
    TestScreenScales test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ScreenScales.moc"
