#include "login/LoginItem.h"
#include "simulated_mac/recorded/LoginItems.h"
#include "simulated_mac/recorded/Messages.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

class TestLoginItemOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void registersAndUnregisters();
    void staysDisabledUntilTheUserApproves();
    void saysWhyAnUnsignedBundleIsRefused();
    void hasNoFile();
};

void TestLoginItemOnMac::init()
{
    loginItems() = {};
    sentMessages().clear();
}

void TestLoginItemOnMac::registersAndUnregisters()
{
    const LoginItem item = mainLoginItem();
    QVERIFY(!item.isEnabled());
    QVERIFY(sentMessages().empty()); // Asking changes nothing.
    QVERIFY(!item.enable());
    QVERIFY(item.isEnabled());
    QVERIFY(!item.disable());
    QVERIFY(!item.isEnabled());
    QVERIFY((sentMessages()
             == std::vector<std::string>{"SMAppService registerAndReturnError:",
                                         "SMAppService unregisterAndReturnError:"}));
}

void TestLoginItemOnMac::staysDisabledUntilTheUserApproves()
{
    loginItems().userHasApproved = false;
    const LoginItem item = mainLoginItem();
    QVERIFY(!item.enable());
    QVERIFY(!item.isEnabled());
    loginItems().userHasApproved = true;
    QVERIFY(item.isEnabled());
}

void TestLoginItemOnMac::saysWhyAnUnsignedBundleIsRefused()
{
    loginItems().bundleIsSigned = false;
    const LoginItem item = mainLoginItem();
    QCOMPARE(item.enable(), std::optional(u"The code signature is not valid"_s));
    QVERIFY(!item.isEnabled());
}

void TestLoginItemOnMac::hasNoFile()
{
    QCOMPARE(loginItemFile(), QString());
}

QTEST_GUILESS_MAIN(TestLoginItemOnMac)
#include "tst_LoginItem_mac.moc"
