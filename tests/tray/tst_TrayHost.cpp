#include "tray/TrayHost.h"

#include <QTest>

using namespace corvane;

class TestTrayHost : public QObject {
    Q_OBJECT

private slots:
    void dependsOnTheProgram_data();
    void dependsOnTheProgram();
};

void TestTrayHost::dependsOnTheProgram_data()
{
    constexpr TrayHost text{.form = LabelForm::text};
    constexpr TrayHost wide{.form = LabelForm::widePicture};
    constexpr TrayHost squares{};
    constexpr TrayHost reversed{.order = ItemOrder::newestLeft};

    QTest::addColumn<TrayProgram>("program");
    QTest::addColumn<TrayHost>("expected");
    QTest::newRow("GNOME's shell shows a text")
        << TrayProgram{"gnome-shell", "gnome-shell"} << text;
    QTest::newRow("a shell whose file cannot be read")
        << TrayProgram{.name = "gnome-shell"} << text;
    QTest::newRow("a service whose name the kernel cut")
        << TrayProgram{.name = "ayatana-indicat"} << text;
    QTest::newRow("the older service, known by its file")
        << TrayProgram{"main", "indicator-application-service"} << text;
    QTest::newRow("waybar keeps proportions") << TrayProgram{"waybar", "waybar"} << wide;
    QTest::newRow("a wrapped waybar") << TrayProgram{".waybar-wrapped", "waybar"} << wide;
    QTest::newRow("swaybar puts new items first") << TrayProgram{"swaybar", "swaybar"} << reversed;
    QTest::newRow("Xfce's tray puts new items first")
        << TrayProgram{"panel-6-systray", "wrapper-2.0"} << reversed;
    QTest::newRow("the same with a number of two digits")
        << TrayProgram{"panel-16-systra", "wrapper-2.0"} << reversed;
    QTest::newRow("Xfce's older plugin") << TrayProgram{.name = "panel-3-statusn"} << reversed;
    QTest::newRow("a panel that is not Xfce's")
        << TrayProgram{.name = "panel-x-systray"} << squares;
    QTest::newRow("LXQt's panel") << TrayProgram{"lxqt-panel", "lxqt-panel"} << squares;
    QTest::newRow("Plasma") << TrayProgram{"kded6", "kded6"} << squares;
    QTest::newRow("a program that only begins like a known one")
        << TrayProgram{"waybar-helper", "waybar-helper"} << squares;
    QTest::newRow("an unknown program") << TrayProgram{} << squares;
}

void TestTrayHost::dependsOnTheProgram()
{
    QFETCH(TrayProgram, program);
    QTEST(trayHost(program), "expected");
}

QTEST_APPLESS_MAIN(TestTrayHost)
#include "tst_TrayHost.moc"
