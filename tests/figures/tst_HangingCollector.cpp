// A metrics file on a file system that never answers.

#include "figures/MetricsFile.h"
#include "sampler/SystemSampler.h"
#include "support/OwnMounts.h"
#include "support/TestMounts.h"
#include "threads/BackgroundJob.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <optional>
#include <utility>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestHangingCollector : public QObject {
    Q_OBJECT

public:
    explicit TestHangingCollector(bool mayMount) : m_mayMount(mayMount) { }

private slots:
    void theMainThreadGoesOn();

private:
    bool m_mayMount;
};

void TestHangingCollector::theMainThreadGoesOn()
{
    const QTemporaryDir answering;
    const QTemporaryDir folder;
    std::optional<HangingMount> hanging(std::in_place, folder.path().toStdString());
    if (!m_mayMount || !hanging->isMounted())
        QSKIP("This user may not mount a file system");
    AppSettings settings;
    SystemSampler sampler(settings, {}, keepsNoHistory);
    QElapsedTimer elapsed;
    elapsed.start();
    {
        MetricsFile metrics(sampler, u"Chip"_s);
        metrics.setFolder(folder.path());
        metrics.setFolder({});
        metrics.setFolder(folder.path());
        metrics.setFolder(answering.path());
        QTRY_VERIFY(QFile::exists(answering.filePath(u"corvane.prom"_s)));
        metrics.setFolder(folder.path());
    }
    QVERIFY(elapsed.elapsed() < 10'000);
    hanging.reset();
    QTRY_VERIFY(!isRunningBackgroundJobs());
}

int main(int argc, char **argv)
{
    const bool mayMount = unshareMounts(); // Before the first thread.
    const QCoreApplication application(argc, argv);
    TestHangingCollector test(mayMount);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HangingCollector.moc"
