#include "bus/BusAddress.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Sockets = std::vector<BusSocket>;

class TestBusAddress : public QObject {
    Q_OBJECT

private slots:
    void listsTheSockets_data();
    void listsTheSockets();
};

void TestBusAddress::listsTheSockets_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<Sockets>("expected");
    const auto row = [](const char *name, const QString &address, const Sockets &expected) {
        QTest::newRow(name) << address << expected;
    };
    const auto path = [](const std::string &name) { return BusSocket{.path = name}; };
    const auto port = [](const std::string &host, const std::string &number) {
        return BusSocket{.host = host, .port = number};
    };
    const BusSocket unknown;
    row("a path", u"unix:path=/run/user/1000/bus"_s, {path("/run/user/1000/bus")});
    row("after other keys", u"unix:guid=0a1b,path=/run/bus"_s, {path("/run/bus")});
    row("before other keys", u"unix:path=/run/bus,guid=0a1b"_s, {path("/run/bus")});
    row("with escapes", u"unix:path=/tmp/a%2cb%20c%3d%3b"_s, {path("/tmp/a,b c=;")});
    row("an abstract name", u"unix:abstract=/tmp/dbus-x,guid=0a1b"_s,
        {path(std::string(1, '\0') + "/tmp/dbus-x")});
    row("several addresses", u"unix:path=/a;unix:path=/b;"_s, {path("/a"), path("/b")});
    row("a port", u"tcp:host=127.0.0.1,port=12"_s, {port("127.0.0.1", "12")});
    row("a port of a newer address", u"tcp:host=::1,port=12,family=ipv6"_s, {port("::1", "12")});
    row("a port of this machine", u"tcp:host=localhost,port=12"_s,
        {port("127.0.0.1", "12"), port("::1", "12")});
    row("a port of no host", u"tcp:port=12"_s, {port("127.0.0.1", "12"), port("::1", "12")});
    row("a host whose name is looked up", u"tcp:host=example.org,port=12"_s, {unknown});
    row("a host whose name has the letters of a number", u"tcp:host=cafe,port=12"_s, {unknown});
    row("a host without a port", u"tcp:host=127.0.0.1"_s, {unknown});
    row("a program to start, after a socket", u"unix:path=/a;unixexec:path=/bin/cat"_s,
        {path("/a"), unknown});
    row("a socket without a name", u"unix:runtime=yes"_s, {unknown});
    row("no transport", u"path=/run/bus"_s, {unknown});
    row("empty", QString(), {});
}

void TestBusAddress::listsTheSockets()
{
    QFETCH(const QString, address);
    QFETCH(const Sockets, expected);
    QVERIFY(busSockets(address) == expected);
}

QTEST_GUILESS_MAIN(TestBusAddress)
#include "tst_BusAddress.moc"
