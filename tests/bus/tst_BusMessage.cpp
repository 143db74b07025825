#include "bus/BusMessage.h"

#include "bus/LoopConnection.h"
#include "support/PrivateBus.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

/// Messages that are written, sealed as for sending, and read again.
class TestBusMessage : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void hasTheSignatureOfWhatIsWritten_data();
    void hasTheSignatureOfWhatIsWritten();
    void isReadInOrder();
    void missingValuesAreEmpty_data();
    void missingValuesAreEmpty();
    void theFirstElementsOfALongArrayAreRead();
    void nothingIsWrittenAfterAFailure();

private:
    using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

    /// Ready to be read.
    Message written(const BusWriter::Write &write, int *result = nullptr) const;

    PrivateBus m_daemon;
    BusHandle m_bus;
};

Q_DECLARE_METATYPE(BusWriter::Write)

void TestBusMessage::initTestCase()
{
    QVERIFY(m_daemon.start());
    m_bus = openBusHandle(m_daemon.address());
    QVERIFY(m_bus);
}

TestBusMessage::Message TestBusMessage::written(const BusWriter::Write &write, int *result) const
{
    sd_bus_message *created = nullptr;
    sd_bus_message_new_signal(m_bus.get(), &created, "/", "corvane.test", "Written");
    Message message(created, &sd_bus_message_unref);
    BusWriter writer(created);
    write(writer);
    if (result)
        *result = writer.result();
    sd_bus_message_seal(created, 1, 0);
    sd_bus_message_rewind(created, 1);
    return message;
}

void TestBusMessage::hasTheSignatureOfWhatIsWritten_data()
{
    QTest::addColumn<BusWriter::Write>("write");
    QTest::addColumn<QByteArray>("signature");
    const auto row = [](const char *name, const char *signature, const BusWriter::Write &write) {
        QTest::newRow(name) << write << QByteArray(signature);
    };
    row("nothing", "", [](BusWriter &) {});
    row("a truth value", "b", [](BusWriter &writer) { writer << true; });
    row("numbers", "iu", [](BusWriter &writer) { writer << -1 << 1U; });
    row("a text", "s", [](BusWriter &writer) { writer << u"Größe"_s; });
    row("no texts", "as", [](BusWriter &writer) { writer << QStringList(); });
    row("bytes", "ay", [](BusWriter &writer) { writer << QByteArray("\0\1", 2); });
    row("properties", "a{sv}", [](BusWriter &writer) {
        writer << QVariantMap{{u"label"_s, u"Quit"_s}, {u"enabled"_s, false}};
    });
    row("a path", "o", [](BusWriter &writer) { writer.path("/MenuBar"); });
    row("a variant", "v", [](BusWriter &writer) { writer.variant(u"Quit"_s); });
    row("structures in an array", "a(is)", [](BusWriter &writer) {
        writer.array("(is)", [](BusWriter &array) {
            array.structure("is", [](BusWriter &members) { members << 1 << u"one"_s; });
        });
    });
}

void TestBusMessage::hasTheSignatureOfWhatIsWritten()
{
    QFETCH(BusWriter::Write, write);
    int result = -1;
    const Message message = written(write, &result);
    QVERIFY(result >= 0);
    QTEST(QByteArray(sd_bus_message_get_signature(message.get(), 1)), "signature");
}

void TestBusMessage::isReadInOrder()
{
    const Message message = written([](BusWriter &writer) {
        writer << -3 << u"Größe \U0001F50B"_s << QStringList{u"a"_s, QString()};
        writer.array("i", [](BusWriter &array) { array << 4 << 5; });
        writer.array("(isvu)", [](BusWriter &array) {
            for (const int id : {6, 7}) {
                array.structure("isvu", [id](BusWriter &members) {
                    (members << id << u"clicked"_s).variant(true) << 8U;
                });
            }
        });
        writer << 9;
    });
    BusReader reader(message.get());
    QCOMPARE(reader.number(), -3);
    QCOMPARE(reader.text(), u"Größe \U0001F50B"_s);
    QCOMPARE(reader.texts(), (QStringList{u"a"_s, QString()}));
    QCOMPARE(reader.numbers(), (QList<int>{4, 5}));
    QList<int> ids;
    reader.structures("isvu", [&ids](BusReader &structure) {
        ids.append(structure.number());
        QCOMPARE(structure.text(), u"clicked"_s);
        structure.skip("vu");
    });
    QCOMPARE(ids, (QList<int>{6, 7}));
    QCOMPARE(reader.number(), 9);
}

void TestBusMessage::missingValuesAreEmpty_data()
{
    QTest::addColumn<BusWriter::Write>("write");
    QTest::newRow("nothing is left") << BusWriter::Write([](BusWriter &) {});
    QTest::newRow("another type") << BusWriter::Write([](BusWriter &writer) { writer << true; });
}

void TestBusMessage::missingValuesAreEmpty()
{
    QFETCH(BusWriter::Write, write);
    const Message message = written(write);
    BusReader reader(message.get());
    QCOMPARE(reader.number(), 0);
    QCOMPARE(reader.text(), QString());
    QCOMPARE(reader.texts(), QStringList());
    QCOMPARE(reader.numbers(), QList<int>());
    bool isRead = false;
    reader.structures("isvu", [&isRead](BusReader &) { isRead = true; });
    QVERIFY(!isRead);
}

/// A message may have millions of elements.
void TestBusMessage::theFirstElementsOfALongArrayAreRead()
{
    constexpr int many = 100'000;
    const Message message = written([](BusWriter &writer) {
        writer.array("i", [](BusWriter &array) {
            for (int number = 0; number < many; ++number)
                array << number;
        });
        writer << 9 << QStringList(many, u"a"_s);
    });
    BusReader reader(message.get());
    const QList<int> numbers = reader.numbers();
    QCOMPARE(numbers.size(), BusReader::mostElements);
    QCOMPARE(numbers.last(), BusReader::mostElements - 1);
    QCOMPARE(reader.number(), 9);
    QCOMPARE(reader.texts().size(), BusReader::mostElements);

    const Message structures = written([](BusWriter &writer) {
        writer.array("(i)", [](BusWriter &array) {
            for (int number = 0; number < many; ++number)
                array.structure("i", [number](BusWriter &members) { members << number; });
        });
    });
    int count = 0;
    BusReader(structures.get()).structures("i", [&count](BusReader &structure) {
        QCOMPARE(structure.number(), count++);
    });
    QCOMPARE(count, BusReader::mostElements);
}

void TestBusMessage::nothingIsWrittenAfterAFailure()
{
    int result = 0;
    const Message message = written(
        [](BusWriter &writer) { writer.path("not a path") << 1 << u"text"_s << QStringList(); },
        &result);
    QVERIFY(result < 0);
    QCOMPARE(QByteArray(sd_bus_message_get_signature(message.get(), 1)), QByteArray("o"));
}

QTEST_GUILESS_MAIN(TestBusMessage)
#include "tst_BusMessage.moc"
