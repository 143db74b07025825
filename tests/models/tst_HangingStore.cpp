// Stores of models on a file system that never answers.

#include "models/GGUFText.h"
#include "models/ModelNames.h"
#include "models/ModelTree.h"
#include "support/OwnMounts.h"
#include "support/TestMounts.h"

#include <QDir>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds patience(100);

/// A workload whose command line names a blob of the store.
AIWorkload workload(std::int64_t pid, const ModelTree &tree, char digit)
{
    AIWorkload workload{.id = pid,
                        .pid = pid,
                        .model = u"blob "_s + QString(12, QLatin1Char(digit)),
                        .startTime = 1};
    workload.details.path = QString::fromStdString(tree.blob(digit));
    return workload;
}

/// Resolves files that no process uses.
std::shared_ptr<ModelResolver> resolver()
{
    return std::make_shared<ModelResolver>(
        ModelFiles{.mapped = [](std::int32_t) { return std::vector<MappedFile>(); },
                   .opened = [](std::int32_t) { return std::vector<std::string>(); },
                   .reachable = [](std::int32_t, const std::string &path) { return path; }},
        nullptr);
}

} // namespace

class TestHangingStore : public QObject {
    Q_OBJECT

public:
    explicit TestHangingStore(bool mayMount) : m_mayMount(mayMount) { }

private slots:
    void showsWhatIsKnown_data();
    void showsWhatIsKnown();

private:
    bool m_mayMount;
};

void TestHangingStore::showsWhatIsKnown_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("the manifests") << u"/ollama/manifests"_s;
    QTest::newRow("the blobs") << u"/ollama/blobs"_s;
    QTest::newRow("the whole store") << u"/ollama"_s;
}

void TestHangingStore::showsWhatIsKnown()
{
    QFETCH(QString, folder);
    const ModelTree slow;
    QVERIFY(QDir().mkpath(QString::fromStdString(slow.root()) + folder));
    const HangingMount hanging(slow.root() + folder.toStdString());
    if (!m_mayMount || !hanging.isMounted())
        QSKIP("This user may not mount a file system");
    const ModelTree quick;
    quick.writeManifest("registry.ollama.ai/library/qwen3/8b", ModelTree::manifest('2'));
    quick.writeBlob('2', GGUFText().text("general.name", "Qwen3 8B").bytes());

    ModelNames names(resolver(), patience);
    for (int survey = 0; survey < 2; ++survey) {
        std::vector<AIWorkload> workloads{workload(11, slow, '1'), workload(12, quick, '2')};
        names.name(workloads); // Returns although the folder still hangs.
        QCOMPARE(workloads[0].model, std::optional(u"blob 111111111111"_s));
        QCOMPARE(workloads[1].model, std::optional(u"qwen3:8b"_s));
    }
}

int main(int argc, char **argv)
{
    TestHangingStore test(unshareMounts()); // Before the first thread.
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HangingStore.moc"
