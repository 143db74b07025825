#include "ui/RoomText.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Place = ModelRoom::Place;

namespace {

constexpr std::uint64_t gib = std::uint64_t(1) << 30;

} // namespace

class TestRoomText : public QObject {
    Q_OBJECT

private slots:
    void saysHowMuchAndWhere_data();
    void saysHowMuchAndWhere();
    void saysHowItWasReckoned_data();
    void saysHowItWasReckoned();
};

void TestRoomText::saysHowMuchAndWhere_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, Place place, double gigabytes, const QString &text) {
        QTest::newRow(name) << static_cast<int>(place)
                            << static_cast<quint64>(gigabytes * double(gib)) << text;
    };
    row("whole gigabytes", Place::card, 13, u"Room for a model of about 13 GB on GPU 1"_s);
    row("rounded down", Place::card, 13.99, u"Room for a model of about 13 GB on GPU 1"_s);
    row("tenths below ten", Place::memory, 9.99, u"Room for a model of about 9.9 GB in memory"_s);
    row("no tenths", Place::memory, 4, u"Room for a model of about 4 GB in memory"_s);
    row("a Mac", Place::unified, 40.5, u"Room for a model of about 40 GB in memory"_s);
    row("the least", Place::memory, 0.5, u"Room for a model of about 0.5 GB in memory"_s);
    row("hardly any", Place::memory, 0.49, u"No room for a model in memory"_s);
    row("none", Place::card, 0, u"No room for a model on GPU 1"_s);
    row("a server", Place::memory, 2048, u"Room for a model of about 2048 GB in memory"_s);
}

void TestRoomText::saysHowMuchAndWhere()
{
    QFETCH(int, place);
    QFETCH(quint64, bytes);
    ModelRoom room{.place = static_cast<Place>(place), .gpu = 1, .bytes = bytes};
    QTEST(roomText(room), "text");
    room.isUnderPressure = true;
    QCOMPARE(roomText(room), u"Memory is under pressure"_s);
}

void TestRoomText::saysHowItWasReckoned_data()
{
    QTest::addColumn<ModelRoom>("room");
    QTest::addColumn<QStringList>("sentences");
    const QString left = u"1 GB of it are left to the model's context and the system."_s;
    ModelRoom room{.place = Place::card,
                   .bytes = 13 * gib,
                   .free = 14 * gib,
                   .total = 24 * gib,
                   .used = 10 * gib};
    QTest::newRow("a card") << room
                            << QStringList{u"GPU 0 has 10 GB of 24 GB in use, so that 14 GB are "
                                           "free."_s,
                                           left,
                                           u"Of several cards, the one with the most room "
                                           "counts."_s};
    room.place = Place::unified;
    QTest::newRow("a Mac") << room
                           << QStringList{u"The GPU has 10 GB of 24 GB in use that it may have of "
                                          "the memory; 14 GB are free there and in the memory as "
                                          "a whole."_s,
                                          left};
    room.place = Place::memory;
    QTest::newRow("memory") << room
                            << QStringList{u"Programs can take 14 GB without swapping "
                                           "(MemAvailable)."_s,
                                           left};
    room.ownFree = gib / 4;
    QTest::newRow("an integrated GPU")
        << room
        << QStringList{u"Programs can take 13.75 GB without swapping (MemAvailable)."_s,
                       u"The GPU has 256 MB of its own that are free."_s, left};
    room.ownFree = 0;
    room.isUnderPressure = true;
    QTest::newRow("pressure") << room
                              << QStringList{u"The system is short of memory: another model would "
                                             "slow down everything that runs."_s,
                                             u"Programs can take 14 GB without swapping "
                                             "(MemAvailable)."_s,
                                             left};
}

void TestRoomText::saysHowItWasReckoned()
{
    QFETCH(ModelRoom, room);
    QFETCH(QStringList, sentences);
    QCOMPARE(roomReckoning(room).split(u'\n'), sentences);
}

QTEST_GUILESS_MAIN(TestRoomText)
#include "tst_RoomText.moc"
