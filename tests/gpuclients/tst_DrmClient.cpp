#include "gpuclients/DrmClient.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// "0000:c1:00.0 #42 gfx 5/9 of 2, vram 100" with all that was read; "nothing" for no client.
QString textOf(const std::optional<DrmClient> &client)
{
    if (!client)
        return u"nothing"_s;
    QString text = QString::fromStdString(client->address + " #" + client->id);
    for (const DrmEngine &engine : client->engines) {
        text += u' ' + QString::fromStdString(engine.name);
        if (engine.busy)
            text += u" %1"_s.arg(*engine.busy);
        if (engine.total)
            text += u"/%1"_s.arg(*engine.total);
        if (engine.share)
            text += u" %1 %"_s.arg(*engine.share * 100);
        if (engine.capacity != 1)
            text += u" of %1"_s.arg(engine.capacity);
    }
    for (const DrmRegion &region : client->regions)
        text += u", %1 %2"_s.arg(QString::fromStdString(region.name)).arg(region.bytes);
    return text;
}

const QByteArray start = "pos:\t0\nflags:\t02100002\nmnt_id:\t23\nino:\t739\n";
const QByteArray client =
    start + "drm-driver:\tamdgpu\ndrm-client-id:\t42\ndrm-pdev:\t0000:c1:00.0\n";

} // namespace

class TestDrmClient : public QObject {
    Q_OBJECT

private slots:
    void readsClients_data();
    void readsClients();
    void keepsFewNames();
    void addsUpMemory_data();
    void addsUpMemory();
};

void TestDrmClient::readsClients_data()
{
    QTest::addColumn<QByteArray>("fdinfo");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QByteArray &fdinfo, const QString &text) {
        QTest::newRow(name) << fdinfo << text;
    };
    const QString known = u"0000:c1:00.0 #42"_s;
    row("amdgpu",
        client
            + "drm-memory-vram:\t524288 KiB\ndrm-memory-gtt: \t8388608 KiB\n"
              "drm-engine-gfx:\t123456789 ns\ndrm-engine-compute:\t9876543210 ns\n",
        known + u" gfx 123456789 compute 9876543210, vram 536870912, gtt 8589934592"_s);
    row("amdgpu until 5.18",
        start
            + "pdev:\t0000:c1:00.0\npasid:\t32773\nvram mem:\t1024 kB\ngtt mem:\t2048 kB\n"
              "cpu mem:\t0 kB\ngfx0:\t12.50%\ncompute1:\t3%\n",
        u"0000:c1:00.0 #32773 gfx0 12.5 % compute1 3 %, vram 1048576, gtt 2097152, cpu 0"_s);
    row("i915",
        client
            + "drm-engine-render:\t25662044495 ns\ndrm-engine-video:\t0 ns\n"
              "drm-engine-capacity-video:\t2\ndrm-total-local0:\t9 MiB\n"
              "drm-resident-local0:\t8 MiB\ndrm-shared-local0:\t1 MiB\n",
        known + u" render 25662044495 video 0 of 2, local0 8388608"_s);
    row("xe",
        client
            + "drm-cycles-rcs:\t28257900\ndrm-total-cycles-rcs:\t7655183225\n"
              "drm-resident-vram0:\t4096\n",
        known + u" rcs 28257900/7655183225, vram0 4096"_s);
    row("what is resident counts before what is mapped",
        client + "drm-resident-vram:\t1 KiB\ndrm-memory-vram:\t2 KiB\ndrm-total-vram:\t3 KiB\n",
        known + u", vram 1024"_s);
    row("in any order",
        client + "drm-total-vram:\t3 KiB\ndrm-memory-vram:\t2 KiB\ndrm-resident-vram:\t1 KiB\n",
        known + u", vram 1024"_s);
    row("an ordinary file", start, u"nothing"_s);
    row("no address", start + "drm-driver:\tamdgpu\ndrm-client-id:\t42\n", u"nothing"_s);
    row("no text", {}, u"nothing"_s);
    row("cut in the middle of a line", client + "drm-memory-vram:\t524", known + u", vram 524"_s);
    row("another unit", client + "drm-memory-vram:\t5 GiB\n", known);
    row("no number", client + "drm-memory-vram:\tx KiB\ndrm-engine-gfx:\t-5 ns\n", known);
    row("more bytes than a machine has", client + "drm-memory-vram:\t1125899906842625\n", known);
    row("more KiB than a number holds", client + "drm-memory-vram:\t18446744073709551615 KiB\n",
        known);
    row("cycles where nanoseconds are due", client + "drm-engine-gfx:\t5\n", known);
    row("the first of two counts",
        client + "drm-engine-gfx:\t5 ns\ndrm-engine-gfx:\t6 ns\ndrm-client-id:\t43\n",
        known + u" gfx 5"_s);
    row("no engine of a class", client + "drm-engine-gfx:\t5 ns\ndrm-engine-capacity-gfx:\t0\n",
        known + u" gfx 5"_s);
    row("keys without a name", client + "drm-engine-:\t5 ns\ndrm-memory-:\t5\n", known);
    row("more than all of the time", client + "gfx0:\t101%\n", known);
    row("bytes that are no text", client + QByteArray("\xff\xfe:\t\x80%\ndrm-total-vram:\t1\n"),
        known + u", vram 1"_s);
}

void TestDrmClient::readsClients()
{
    QFETCH(QByteArray, fdinfo);
    QTEST(textOf(parseDrmClient(fdinfo.toStdString())), "text");
}

void TestDrmClient::keepsFewNames()
{
    QByteArray text = client;
    for (int name = 0; name < 1000; ++name) {
        text += "drm-engine-e" + QByteArray::number(name) + ":\t5 ns\n";
        text += "drm-memory-m" + QByteArray::number(name) + ":\t5\n";
    }
    const auto read = parseDrmClient(text.toStdString());
    QVERIFY(read);
    QCOMPARE(read->engines.size(), std::size_t(64));
    QCOMPARE(read->regions.size(), std::size_t(64));
}

void TestDrmClient::addsUpMemory_data()
{
    QTest::addColumn<QByteArray>("regions");
    QTest::addColumn<qint64>("ofACard"); // Negative: absent.
    QTest::addColumn<qint64>("integrated");
    const auto row = [](const char *name, const QByteArray &regions, qint64 ofACard,
                        qint64 integrated) {
        QTest::newRow(name) << regions << ofACard << integrated;
    };
    row("amdgpu", "drm-memory-vram:\t100\ndrm-memory-gtt:\t20\ndrm-memory-cpu:\t3\n", 100, 120);
    row("i915, a card", "drm-resident-local0:\t100\ndrm-resident-system0:\t20\n", 100, 120);
    row("i915, integrated", "drm-resident-system0:\t20\ndrm-resident-stolen-system0:\t1\n", -1, 21);
    row("xe", "drm-resident-vram0:\t100\ndrm-resident-gtt:\t20\ndrm-resident-system:\t3\n", 100,
        123);
    row("a card with two tiles", "drm-resident-vram0:\t100\ndrm-resident-vram1:\t50\n", 150, 150);
    row("nothing held", "drm-memory-vram:\t0\n", 0, 0);
    row("nothing told", "drm-engine-gfx:\t5 ns\n", -1, -1);
}

void TestDrmClient::addsUpMemory()
{
    QFETCH(QByteArray, regions);
    const auto read = parseDrmClient((client + regions).toStdString());
    QVERIFY(read);
    const auto bytes = [&read](bool isIntegrated) {
        const auto sum = drmClientBytes(*read, isIntegrated);
        return sum ? qint64(*sum) : -1;
    };
    QTEST(bytes(false), "ofACard");
    QTEST(bytes(true), "integrated");
}

QTEST_GUILESS_MAIN(TestDrmClient)
#include "tst_DrmClient.moc"
