#include "figures/MetricsFile.h"

#include "sampler/SystemSampler.h"
#include "support/HostileDisk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A metrics file of a sampler that is stepped by hand.
struct Written {
    Written() { sampler.findChild<QTimer *>()->stop(); }

    void tick(int times)
    {
        for (int count = 0; count < times; ++count) {
            ++used;
            sampler.tick();
        }
    }

    QString path(const QString &name = u"corvane.prom"_s) const { return folder.filePath(name); }

    /// The value of that series in the file; absent without it.
    std::optional<qint64> value(const QByteArray &series) const
    {
        QFile file(path());
        if (!file.open(QFile::ReadOnly))
            return std::nullopt;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (line.startsWith(series + ' '))
                return line.split(' ')[1].toLongLong();
        }
        return std::nullopt;
    }

    std::optional<qint64> usedBytes() const { return value("corvane_memory_used_bytes"); }

    qint64 used = 0;
    QTemporaryDir folder;
    AppSettings settings;
    SystemSampler sampler{settings,
                          {.memory =
                               [this] {
                                   return MemorySnapshot{.total = 1000,
                                                         .used = static_cast<std::uint64_t>(used)};
                               },
                           .chip = [] { return ChipReading{.cpuWatts = 8}; },
                           .survey = {},
                           .now = [this] { return 1e6 + double(used); },
                           .steady = [this] { return double(used); }},
                          keepsNoHistory};
    std::unique_ptr<MetricsFile> metrics = std::make_unique<MetricsFile>(sampler, u"Chip"_s);
};

} // namespace

class TestMetricsFile : public QObject {
    Q_OBJECT

private slots:
    void writesNothingUnlessWanted();
    void writesAtOnceAndEveryFifteenSeconds();
    void countsJoulesFromTheStartOfTheProgram();
    void isReadableByEverybody();
    void leavesNothingElseBehind();
    void isRemovedWhenItIsNotWanted();
    void isRemovedAtTheEnd();
    void movesToAnotherFolder();
    void explainsAFolderThatIsMissingAndTriesAgainAfterAMinute();
    void explainsAFullDisk();
    void replacesALinkInItsPlace();
    void findsTheCollectorsFolder();
};

void TestMetricsFile::writesNothingUnlessWanted()
{
    Written written;
    written.tick(40);
    QVERIFY(QDir(written.folder.path()).isEmpty());
}

void TestMetricsFile::writesAtOnceAndEveryFifteenSeconds()
{
    Written written;
    written.tick(3);
    written.metrics->setFolder(written.folder.path());
    QTRY_COMPARE(written.usedBytes(), std::optional<qint64>(3));
    QCoreApplication::processEvents();
    written.tick(14);
    QTest::qWait(0);
    QCOMPARE(written.usedBytes(), std::optional<qint64>(3));
    written.tick(1);
    QTRY_COMPARE(written.usedBytes(), std::optional<qint64>(18));
    QVERIFY(!written.metrics->lastError());
}

void TestMetricsFile::countsJoulesFromTheStartOfTheProgram()
{
    const QByteArray joules = R"(corvane_energy_joules_total{part="cpu"})";
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_COMPARE(written.value(joules), std::optional<qint64>(0));
    const auto hasCounted = [&written, &joules] {
        written.tick(1);
        return written.value(joules).value_or(0) > 0;
    };
    QTRY_VERIFY(hasCounted());
    QCOMPARE(written.value(joules), std::optional(8 * *written.usedBytes())); // A second a tick.
    const QTemporaryDir another;
    written.metrics->setFolder(another.path());
    written.metrics->setFolder(written.folder.path()); // The counter is that of the program.
    QTRY_VERIFY(written.value(joules).has_value());
    QCOMPARE(written.value(joules), std::optional(8 * *written.usedBytes()));
}

void TestMetricsFile::isReadableByEverybody()
{
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    const auto all = QFile::ReadOwner | QFile::ReadUser | QFile::WriteOwner | QFile::WriteUser
        | QFile::ReadGroup | QFile::ReadOther;
    QCOMPARE(QFileInfo(written.path()).permissions(), all);
}

void TestMetricsFile::leavesNothingElseBehind()
{
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    QTRY_COMPARE(QDir(written.folder.path()).entryList(QDir::Files),
                 QStringList(u"corvane.prom"_s));
}

void TestMetricsFile::isRemovedWhenItIsNotWanted()
{
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    written.metrics->setFolder({});
    QVERIFY(!QFile::exists(written.path()));
    written.tick(30);
    QTest::qWait(0);
    QVERIFY(QDir(written.folder.path()).isEmpty());
}

void TestMetricsFile::isRemovedAtTheEnd()
{
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    written.metrics.reset();
    QVERIFY(!QFile::exists(written.path()));
}

void TestMetricsFile::movesToAnotherFolder()
{
    Written written;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    QVERIFY(QDir(written.folder.path()).mkdir(u"other"_s));
    written.metrics->setFolder(written.path(u"other"_s));
    QTRY_VERIFY(QFile::exists(written.path(u"other/corvane.prom"_s)));
    QVERIFY(!QFile::exists(written.path()));
}

void TestMetricsFile::explainsAFolderThatIsMissingAndTriesAgainAfterAMinute()
{
    Written written;
    QSignalSpy changed(written.metrics.get(), &MetricsFile::lastErrorChanged);
    const QString folder = written.path(u"later"_s);
    written.metrics->setFolder(folder);
    QTRY_COMPARE(changed.count(), 1);
    QVERIFY(written.metrics->lastError()->startsWith(
        u"\"%1/corvane.prom\" cannot be written: "_s.arg(folder)));
    QVERIFY(QDir().mkdir(folder));
    written.tick(59);
    QTest::qWait(0);
    QVERIFY(!QFile::exists(folder + u"/corvane.prom"_s));
    written.tick(1);
    QTRY_COMPARE(changed.count(), 2);
    QVERIFY(!written.metrics->lastError());
    QVERIFY(QFile::exists(folder + u"/corvane.prom"_s));
}

void TestMetricsFile::explainsAFullDisk()
{
    Written written;
    const test::FullDisk disk;
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(written.metrics->lastError());
    QVERIFY(QDir(written.folder.path()).isEmpty());
}

void TestMetricsFile::replacesALinkInItsPlace()
{
    Written written;
    QVERIFY(QFile::link(u"elsewhere"_s, written.path()));
    written.metrics->setFolder(written.folder.path());
    QTRY_VERIFY(QFile::exists(written.path()));
    QVERIFY(!QFileInfo(written.path()).isSymLink());
    QVERIFY(!QFile::exists(written.path(u"elsewhere"_s)));
}

void TestMetricsFile::findsTheCollectorsFolder()
{
    const QTemporaryDir root;
    const QString slashed = root.path() + u'/';
    QCOMPARE(collectorFolder(slashed), QString());
    QVERIFY(QDir().mkpath(slashed + u"var/lib/node_exporter"_s));
    QCOMPARE(collectorFolder(slashed), slashed + u"var/lib/node_exporter"_s);
    QVERIFY(QDir().mkpath(slashed + u"var/lib/prometheus/node-exporter"_s));
    QCOMPARE(collectorFolder(slashed), slashed + u"var/lib/prometheus/node-exporter"_s);
}

QTEST_GUILESS_MAIN(TestMetricsFile)
#include "tst_MetricsFile.moc"
