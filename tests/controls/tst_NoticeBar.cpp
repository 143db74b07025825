#include "controls/NoticeBar.h"

#include "controls/PanelButton.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestNoticeBar : public QObject {
    Q_OBJECT

private slots:
    void closesItself_data();
    void closesItself();
    void saysItsTextInOneLine();
    void cutsALongTextBeforeTheButtons();
};

void TestNoticeBar::closesItself_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("forGood");
    QTest::newRow("for now") << u"Close"_s << 0;
    QTest::newRow("for good") << u"Don’t Show Again"_s << 1;
}

void TestNoticeBar::closesItself()
{
    QFETCH(QString, button);
    const QPointer<NoticeBar> bar = new NoticeBar(u"Advice"_s);
    const QSignalSpy forGood(bar, &NoticeBar::dismissedForGood);
    for (PanelButton *each : bar->findChildren<PanelButton *>()) {
        if (each->text() == button)
            each->click();
    }
    QTEST(static_cast<int>(forGood.count()), "forGood");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!bar);
}

void TestNoticeBar::saysItsTextInOneLine()
{
    const NoticeBar bar(u"Two\nlines"_s);
    QCOMPARE(bar.accessibleTexts().size(), 1U);
    QCOMPARE(bar.accessibleTexts()[0].value, u"Two\uFFFDlines"_s);
    QCOMPARE(bar.toolTip(), plainToolTip(u"Two\uFFFDlines"_s));
}

void TestNoticeBar::cutsALongTextBeforeTheButtons()
{
    NoticeBar bar(QString(400, u'M'));
    bar.resize(920, bar.height());
    const QImage picture = rendered(bar, 1);
    const QRectF text = bar.accessibleTexts()[0].place;
    int left = bar.width();
    for (const PanelButton *button : bar.findChildren<PanelButton *>())
        left = std::min(left, button->mapTo(&bar, QPoint()).x());
    QCOMPARE(text.left(), 16.0);
    QCOMPARE(text.right(), left - 16.0);
    for (int y = 2; y < picture.height(); ++y)
        QCOMPARE(picture.pixel(left - 8, y), picture.pixel(8, y));
}

QTEST_MAIN(TestNoticeBar)
#include "tst_NoticeBar.moc"
