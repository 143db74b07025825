#include "bus/BusHandshake.h"

#include "platform/UnixSocket.h"
#include "support/HalfBus.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QTemporaryDir>
#include <QTest>

#include <optional>

#include <poll.h>
#include <sys/socket.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

using State = BusHandshake::State;
using Transport = HalfBus::Transport;
Q_DECLARE_METATYPE(BusHandshake::State)

namespace {

/// Goes on as long as something arrives within the time.
State stateAfter(BusHandshake &handshake, int milliseconds)
{
    while (handshake.state() == State::connecting || handshake.state() == State::waiting) {
        const short events = handshake.state() == State::connecting ? POLLOUT : POLLIN;
        pollfd socket = {.fd = handshake.descriptor(), .events = events, .revents = 0};
        if (poll(&socket, 1, milliseconds) == 0)
            break;
        handshake.goOn();
    }
    return handshake.state();
}

} // namespace

class TestBusHandshake : public QObject {
    Q_OBJECT

private slots:
    void init() { m_folder.emplace(); }

    void isAnsweredByARunningBus();
    void waitsForHalfABus_data();
    void waitsForHalfABus();
    void isRefusedByABusThatEndsAfterTheAuthentication();
    void triesEachPlace_data();
    void triesEachPlace();
    void takesAnyAuthentication_data();
    void takesAnyAuthentication();
    void isNotAcceptedWhereTooManyWait();

private:
    QString path() const { return m_folder->filePath(u"bus"_s); }

    std::optional<QTemporaryDir> m_folder;
};

void TestBusHandshake::isAnsweredByARunningBus()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    BusHandshake handshake(bus.address());
    QCOMPARE(stateAfter(handshake, patience), State::answered);
    QCOMPARE(stateAfter(handshake, 0), State::answered);
}

void TestBusHandshake::waitsForHalfABus_data()
{
    QTest::addColumn<bool>("isTCP");
    QTest::newRow("at a path") << false;
    QTest::newRow("at a port") << true;
}

void TestBusHandshake::waitsForHalfABus()
{
    QFETCH(const bool, isTCP);
    const HalfBus bus(isTCP ? Transport::tcp : Transport::unixSocket, path().toStdString());
    QVERIFY(!bus.address().isEmpty());
    BusHandshake handshake(bus.address());
    while (bus.greetings() == 0)
        QCOMPARE(stateAfter(handshake, 10) == State::answered, false);
    QCOMPARE(stateAfter(handshake, 100), State::waiting);
}

void TestBusHandshake::isRefusedByABusThatEndsAfterTheAuthentication()
{
    std::optional<HalfBus> bus;
    bus.emplace(Transport::unixSocket, path().toStdString());
    BusHandshake handshake(bus->address());
    while (bus->greetings() == 0)
        stateAfter(handshake, 10);
    bus.reset();
    QCOMPARE(stateAfter(handshake, patience), State::refused);
}

void TestBusHandshake::triesEachPlace_data()
{
    QTest::addColumn<QString>("address"); // %1 stands for that of a bus.
    QTest::addColumn<State>("expected");
    const auto row = [](const char *name, const QString &address, State expected) {
        QTest::newRow(name) << address << expected;
    };
    row("no place", QString(), State::refused);
    row("no such file", u"unix:path=/nowhere/bus"_s, State::refused);
    row("a port where nothing listens", u"tcp:host=localhost,port=1"_s, State::refused);
    row("no port", u"tcp:host=localhost,port=bus"_s, State::refused);
    row("the bus first", u"%1;unix:path=/nowhere/bus"_s, State::answered);
    row("the bus second", u"unix:path=/nowhere/bus;%1"_s, State::answered);
    row("the bus behind a port", u"tcp:host=127.0.0.1,port=1;%1"_s, State::answered);
    row("a place that cannot be tried", u"unix:path=/nowhere/bus;unixexec:path=/bin/cat"_s,
        State::unknown);
    row("a host to be looked up", u"tcp:host=example.org,port=1"_s, State::unknown);
}

void TestBusHandshake::triesEachPlace()
{
    QFETCH(const QString, address);
    QFETCH(const State, expected);
    PrivateBus bus;
    QVERIFY(bus.start());
    BusHandshake handshake(QString(address).replace(u"%1"_s, bus.address()));
    QCOMPARE(stateAfter(handshake, patience), expected);
}

void TestBusHandshake::takesAnyAuthentication_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<State>("expected");
    const auto row = [](const char *name, const QByteArray &line, State expected) {
        QTest::newRow(name) << line << expected;
    };
    row("accepted", "OK 1234\r\n", State::waiting);
    row("half accepted", "OK 12", State::waiting);
    row("rejected", "REJECTED ANONYMOUS\r\n", State::answered);
    row("not understood", "\377\n", State::answered);
    row("without an end", QByteArray(5000, 'x'), State::refused);
}

void TestBusHandshake::takesAnyAuthentication()
{
    QFETCH(const QByteArray, line);
    QFETCH(const State, expected);
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, path().toStdString()));
    BusHandshake handshake(u"unix:path="_s + path());
    handshake.goOn();
    const FileDescriptor client(accept(listener.get(), nullptr, nullptr));
    QCOMPARE(send(client.get(), line.constData(), std::size_t(line.size()), MSG_NOSIGNAL),
             line.size());
    QCOMPARE(stateAfter(handshake, 100), expected);
}

void TestBusHandshake::isNotAcceptedWhereTooManyWait()
{
    const FileDescriptor listener = openUnixSocket();
    QVERIFY(listenAt(listener, path().toStdString()));
    std::vector<FileDescriptor> clients;
    do {
        clients.push_back(openUnixSocket());
        QVERIFY(clients.size() < 5000);
    } while (connectTo(clients.back(), path().toStdString()));
    QCOMPARE(BusHandshake(u"unix:path="_s + path()).state(), State::crowded);
}

QTEST_GUILESS_MAIN(TestBusHandshake)
#include "tst_BusHandshake.moc"
