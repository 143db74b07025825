#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"
#include "ui/SystemSymbol.h"

#include <QTest>

#include <array>

using namespace corvane;
using namespace corvane::simulated;

using Messages = std::vector<std::string>;

class TestSystemSymbolOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void isDrawnIntoThePicture_data();
    void isDrawnIntoThePicture();
    void drawsNoUnknownSymbol();
    void drawsNoEmptySymbol();

private:
    std::array<unsigned char, 4 * 32 * 32> m_pixels = {};
};

void TestSystemSymbolOnMac::init()
{
    resetDesktop();
}

void TestSystemSymbolOnMac::isDrawnIntoThePicture_data()
{
    QTest::addColumn<SymbolWeight>("weight");
    QTest::addColumn<std::string>("native"); // As AppKit numbers them.
    QTest::newRow("light") << SymbolWeight::light << std::string("-0.4");
    QTest::newRow("medium") << SymbolWeight::medium << std::string("0.23");
    QTest::newRow("semibold") << SymbolWeight::semibold << std::string("0.3");
    QTest::newRow("bold") << SymbolWeight::bold << std::string("0.4");
}

/// Centred, as large as fits: a symbol of 20 by 10 into 32 by 32.
void TestSystemSymbolOnMac::isDrawnIntoThePicture()
{
    QFETCH(SymbolWeight, weight);
    QFETCH(std::string, native);
    QVERIFY(drawSystemSymbol("cpu", weight, m_pixels.data(), 32, 32));
    QVERIFY(
        (takeMessages()
         == Messages{"NSImageSymbolConfiguration size 32 weight " + native,
                     "NSBitmapImageRep 32x32 RGBA device", "NSGraphicsContext saveGraphicsState",
                     "NSGraphicsContext setCurrentContext:NSGraphicsContext",
                     "NSImage drawInRect:0 8 32 16", "NSGraphicsContext flushGraphics",
                     "NSGraphicsContext restoreGraphicsState"}));
}

void TestSystemSymbolOnMac::drawsNoUnknownSymbol()
{
    QVERIFY(!drawSystemSymbol("unknown", SymbolWeight::medium, m_pixels.data(), 32, 32));
}

void TestSystemSymbolOnMac::drawsNoEmptySymbol()
{
    desktop().symbolWidth = 0;
    QVERIFY(!drawSystemSymbol("cpu", SymbolWeight::medium, m_pixels.data(), 32, 32));
}

QTEST_GUILESS_MAIN(TestSystemSymbolOnMac)
#include "tst_SystemSymbol_mac.moc"
