#include "lists/FrameworkColor.h"
#include "ui/Icon.h"
#include "ui/Theme.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <set>
#include <vector>

using namespace corvane;

class TestFrameworkColor : public QObject {
    Q_OBJECT

private slots:
    void showsGenericOnesLikeExplanatoryText();
    void givesEachItsOwn();
    void everySymbolIsDrawn();
};

void TestFrameworkColor::showsGenericOnesLikeExplanatoryText()
{
    QCOMPARE(frameworkColor(AIFramework::generic), QColor(Theme::textSecondary));
    for (const AIFramework framework : furtherAIFrameworks)
        QCOMPARE(frameworkColor(framework), QColor(Theme::textSecondary));
}

void TestFrameworkColor::givesEachItsOwn()
{
    std::set<QRgb> colors;
    for (const AIFramework framework : allAIFrameworks)
        colors.insert(frameworkColor(framework).rgba());
    QCOMPARE(colors.size(), allAIFrameworks.size());
}

void TestFrameworkColor::everySymbolIsDrawn()
{
    QImage empty(16, 16, QImage::Format_ARGB32_Premultiplied);
    empty.fill(Qt::transparent);
    std::vector<AIFramework> all(allAIFrameworks.begin(), allAIFrameworks.end());
    all.insert(all.end(), furtherAIFrameworks.begin(), furtherAIFrameworks.end());
    for (const AIFramework framework : all) {
        QImage image = empty;
        QPainter painter(&image);
        paintIcon(painter, symbol(framework), image.rect(), Qt::white);
        painter.end();
        QVERIFY2(image != empty, qPrintable(symbol(framework)));
    }
}

QTEST_MAIN(TestFrameworkColor)
#include "tst_FrameworkColor.moc"
