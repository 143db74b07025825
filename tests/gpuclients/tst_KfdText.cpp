#include "gpuclients/KfdText.h"

#include <QTest>

using namespace corvane;

class TestKfdText : public QObject {
    Q_OBJECT

private slots:
    void findsAddresses_data();
    void findsAddresses();
};

void TestKfdText::findsAddresses_data()
{
    QTest::addColumn<QByteArray>("properties");
    QTest::addColumn<QByteArray>("address"); // Empty: absent.
    const auto row = [](const char *name, const QByteArray &properties, const char *address = "") {
        QTest::newRow(name) << properties << QByteArray(address);
    };
    row("a card", "cpu_cores_count 0\nsimd_count 192\nlocation_id 768\ndomain 0\n", "0000:03:00.0");
    row("an APU", "domain 0\nlocation_id 49408\ndrm_render_minor 128\n", "0000:c1:00.0");
    row("device and function", "location_id 43\n", "0000:00:05.3");
    row("another domain", "location_id 768\ndomain 65536\n", "10000:03:00.0");
    row("a CPU", "cpu_cores_count 16\nlocation_id 0\ndomain 0\n");
    row("no bus has such a number", "location_id 65536\n");
    row("no number", "location_id x\n");
    row("negative", "location_id -1\n");
    row("nothing", "");
}

void TestKfdText::findsAddresses()
{
    QFETCH(QByteArray, properties);
    QFETCH(QByteArray, address);
    QCOMPARE(kfdAddress(properties.toStdString()).value_or(""), address.toStdString());
}

QTEST_GUILESS_MAIN(TestKfdText)
#include "tst_KfdText.moc"
