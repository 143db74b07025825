#include "cards/FrameworkColor.h"
#include "ui/Theme.h"

#include <QTest>

#include <set>

using namespace corvane;

class TestFrameworkColor : public QObject {
    Q_OBJECT

private slots:
    void showsGenericOnesLikeExplanatoryText();
    void givesEachItsOwn();
};

void TestFrameworkColor::showsGenericOnesLikeExplanatoryText()
{
    QCOMPARE(frameworkColor(AIFramework::generic), QColor(Theme::textSecondary));
}

void TestFrameworkColor::givesEachItsOwn()
{
    std::set<QRgb> colors;
    for (const AIFramework framework : allAIFrameworks)
        colors.insert(frameworkColor(framework).rgba());
    QCOMPARE(colors.size(), allAIFrameworks.size());
}

QTEST_APPLESS_MAIN(TestFrameworkColor)
#include "tst_FrameworkColor.moc"
