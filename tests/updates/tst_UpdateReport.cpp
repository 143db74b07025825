#include "updates/UpdateReport.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;
using enum UpdateReport::Outcome;

class TestUpdateReport : public QObject {
    Q_OBJECT

private slots:
    void describesTheOutcome_data();
    void describesTheOutcome();
};

void TestUpdateReport::describesTheOutcome_data()
{
    QTest::addColumn<UpdateReport>("report");
    QTest::addColumn<QString>("text");
    QTest::newRow("up to date") << UpdateReport{.outcome = upToDate, .isCurrent = true}
                                << u"Corvane is up to date."_s;
    QTest::newRow("an update") << UpdateReport{
        .outcome = available,
        .version = u"0.2.0"_s,
        .isCurrent = true} << u"Corvane 0.2.0 is available; the system's updater installs it."_s;
    QTest::newRow("an update in old lists")
        << UpdateReport{.outcome = available, .version = u"0.2.0"_s, .listAge = 260'000}
        << u"Corvane 0.2.0 is available according to package lists 3 days old; the system's updater installs it."_s;
    const auto aged = [](std::optional<unsigned int> age) {
        return UpdateReport{.outcome = upToDate, .listAge = age};
    };
    const auto withAge = [](const QString &age) {
        return u"Corvane is up to date according to package lists "_s + age + u'.';
    };
    QTest::newRow("age unknown") << aged({}) << withAge(u"of unknown age"_s);
    QTest::newRow("age of seconds") << aged(59) << withAge(u"less than a minute old"_s);
    QTest::newRow("age of a minute") << aged(60) << withAge(u"1 minute old"_s);
    QTest::newRow("age of minutes") << aged(3599) << withAge(u"59 minutes old"_s);
    QTest::newRow("age of an hour") << aged(3600) << withAge(u"1 hour old"_s);
    QTest::newRow("age of a day") << aged(86'400) << withAge(u"24 hours old"_s);
    QTest::newRow("age of two days") << aged(172'800) << withAge(u"2 days old"_s);
    QTest::newRow("the longest age") << aged(4'294'967'294U) << withAge(u"49710 days old"_s);
    QTest::newRow("no service") << UpdateReport{
        .outcome =
            noService} << u"This system has no PackageKit service, which could tell of updates."_s;
    QTest::newRow("not a package")
        << UpdateReport{.outcome = notAPackage}
        << u"This Corvane was not installed as a package, so the system has no updates for it."_s;
    QTest::newRow("no answer") << UpdateReport{
        .outcome =
            failed} << u"The check failed: the system's package service gave no usable answer."_s;
    QTest::newRow("a wrong signature")
        << UpdateReport{.outcome = unverified}
        << u"The signature of the package lists is wrong, so no update is offered."_s;
}

void TestUpdateReport::describesTheOutcome()
{
    QFETCH(const UpdateReport, report);
    QTEST(updateFinding(report), "text");
}

QTEST_GUILESS_MAIN(TestUpdateReport)
#include "tst_UpdateReport.moc"
