#include "chip/ChannelName.h"

#include <QTest>

using namespace corvane;

class TestChannelName : public QObject {
    Q_OBJECT

private slots:
    void takesOffTheDie_data();
    void takesOffTheDie();
};

void TestChannelName::takesOffTheDie_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("plain");
    const auto row = [](const char *title, const char *name, const char *plain) {
        QTest::newRow(title) << QByteArray(name) << QByteArray(plain);
    };
    row("a die", "DIE_0_CPU Energy", "CPU Energy");
    row("a die of two digits", "DIE_12_ANE", "ANE");
    row("a die before a space", "DIE0 CPU Energy", "CPU Energy");
    row("a die of two digits before a space", "DIE12 ECPU", "ECPU");
    row("a space without a number", "DIE CPU Energy", "DIE CPU Energy");
    row("nothing behind the space", "DIE0 ", "DIE0 ");
    row("an underscore where the space belongs", "DIE0_CPU Energy", "DIE0_CPU Energy");
    row("one of two dies", "DIE_0_DIE_1_ANE", "DIE_1_ANE");
    row("the chip's own numbers stay", "ANE0_0", "ANE0_0");
    row("not at the start", "MY DIE_0_ANE", "MY DIE_0_ANE");
    row("no number", "DIE__ANE", "DIE__ANE");
    row("no digits", "DIE_x_ANE", "DIE_x_ANE");
    row("no separator behind the number", "DIE_0ANE", "DIE_0ANE");
    row("nothing behind the separator", "DIE_0_", "DIE_0_");
    row("nothing behind the number", "DIE_0", "DIE_0");
    row("nothing behind the prefix", "DIE_", "DIE_");
    row("less than the prefix", "DIE", "DIE");
    row("no name", "", "");
}

void TestChannelName::takesOffTheDie()
{
    QFETCH(QByteArray, name);
    const std::string text = name.toStdString();
    const std::string_view plain = withoutDie(text);
    QTEST(QByteArray(plain.data(), qsizetype(plain.size())), "plain");
}

QTEST_APPLESS_MAIN(TestChannelName)
#include "tst_ChannelName.moc"
