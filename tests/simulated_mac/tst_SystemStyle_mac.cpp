#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "ui/SystemStyle.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

class TestSystemStyleOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void hasTheSecondaryColourOfDarkWindows();
    void namesTheSystemsFonts();
    void hasNoRoundedFontWhereThereIsNone();
};

void TestSystemStyleOnMac::init()
{
    resetDesktop();
}

/// The appearance of the other programs is the light one here.
void TestSystemStyleOnMac::hasTheSecondaryColourOfDarkWindows()
{
    QCOMPARE(systemSecondaryColor(), std::optional(QColor::fromRgbF(1, 1, 1, 0.55F)));
    QCOMPARE(openPools(), 0);
}

void TestSystemStyleOnMac::namesTheSystemsFonts()
{
    QCOMPARE(systemFontFamily(), u".AppleSystemUIFont"_s);
    QCOMPARE(systemRoundedFamily(), u".AppleSystemUIFontRounded"_s);
}

void TestSystemStyleOnMac::hasNoRoundedFontWhereThereIsNone()
{
    desktop().hasRoundedFont = false;
    QCOMPARE(systemRoundedFamily(), QString());
}

QTEST_GUILESS_MAIN(TestSystemStyleOnMac)
#include "tst_SystemStyle_mac.moc"
