#include "figures/FiguresOutput.h"

#include "sampler/SystemSampler.h"
#include "support/ProcessState.h"
#include "support/Waiting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A sampler that is stepped by hand, and a file that its figures are printed to.
struct Printed {
    explicit Printed(FiguresForm form)
    {
        file.open();
        sampler.findChild<QTimer *>()->stop();
        output = std::make_unique<FiguresOutput>(sampler, form, u"Chip"_s, file.handle());
    }

    QList<QJsonObject> objects()
    {
        file.seek(0);
        QList<QJsonObject> all;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (!line.isEmpty())
                all.append(QJsonDocument::fromJson(line).object());
        }
        return all;
    }

    QTemporaryFile file;
    AppSettings settings;
    SystemSampler sampler{
        settings,
        {.memory = [] { return MemorySnapshot{.total = 100, .used = 63}; },
         .chip = {},
         .survey = {.take =
                        [](const RankingReport &) {
                            return Survey{.processes = {{.id = 7, .name = u"sh"_s, .memory = 5}}};
                        }}},
        keepsNoHistory};
    std::unique_ptr<FiguresOutput> output;
};

} // namespace

class TestFiguresOutput : public QObject {
    Q_OBJECT

private slots:
    void printsASecondOnce();
    void printsEachSecond();
    void printsASurveyOnce();
    void printsForABar();
    void anHourGrowsNothing();
};

void TestFiguresOutput::printsASecondOnce()
{
    Printed printed(FiguresForm::once);
    QSignalSpy finished(printed.output.get(), &FiguresOutput::finished);
    QSignalSpy surveyed(&printed.sampler, &SystemSampler::aiWorkloadsChanged);
    TRY_VERIFY(!surveyed.isEmpty()); // In much less than a second.
    QVERIFY(printed.objects().isEmpty());
    printed.sampler.tick();
    QCOMPARE(finished.count(), 1);
    QCOMPARE(printed.objects().size(), 1);
    QCOMPARE(printed.objects()[0]["memory"_L1]["used_bytes"_L1].toInt(), 63);
    QCOMPARE(printed.objects()[0]["chip"_L1].toString(), u"Chip"_s);
    QCOMPARE(printed.objects()[0]["processes"_L1][0]["name"_L1].toString(), u"sh"_s);
}

void TestFiguresOutput::printsEachSecond()
{
    Printed printed(FiguresForm::stream);
    QSignalSpy finished(printed.output.get(), &FiguresOutput::finished);
    for (int second = 0; second < 5; ++second)
        printed.sampler.tick();
    QCOMPARE(printed.objects().size(), 5);
    QCOMPARE(finished.count(), 0);
}

void TestFiguresOutput::printsASurveyOnce()
{
    Printed printed(FiguresForm::stream);
    QSignalSpy surveyed(&printed.sampler, &SystemSampler::aiWorkloadsChanged);
    while (surveyed.isEmpty()) {
        printed.sampler.tick();
        QCoreApplication::processEvents();
    }
    printed.sampler.tick();
    QCOMPARE(printed.objects().last()["processes"_L1][0]["name"_L1].toString(), u"sh"_s);
    const auto count = printed.objects().size();
    surveyed.clear();
    printed.sampler.tick();
    QCOMPARE(printed.objects().size(), count + 1);
    QCOMPARE(printed.objects().last().contains("processes"_L1), !surveyed.isEmpty());
}

void TestFiguresOutput::printsForABar()
{
    Printed printed(FiguresForm::waybar);
    printed.sampler.tick();
    QCOMPARE(printed.objects()[0]["text"_L1].toString(), u"63 0 0W"_s);
    QCOMPARE(printed.objects()[0]["percentage"_L1].toInt(), 63);
}

/// In a sanitizer's run, whose allocator does not tell the heap, this runs the hour alone.
void TestFiguresOutput::anHourGrowsNothing()
{
    constexpr int hour = 3'600;
    constexpr qint64 tenBytesATick = 10 * hour;
    Printed printed(FiguresForm::stream);
    const auto stepFor = [&printed](int seconds) {
        for (int second = 0; second < seconds; ++second) {
            printed.sampler.tick();
            QCoreApplication::processEvents();
        }
    };
    stepFor(hour / 4);
    const qint64 before = test::heapInUse();
    stepFor(hour);
    QVERIFY2(test::heapInUse() - before < tenBytesATick,
             qPrintable(QString::number(test::heapInUse() - before)));
    QCOMPARE(printed.objects().size(), hour + hour / 4);
}

QTEST_GUILESS_MAIN(TestFiguresOutput)
#include "tst_FiguresOutput.moc"
