// Stores of models on a file system that never answers.

#include "models/GGUFText.h"
#include "models/ModelNames.h"
#include "models/ModelTree.h"
#include "platform/FileDescriptor.h"
#include "support/OwnMounts.h"

#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// A file system at a folder whose server takes every request and answers none. Requests fail when
/// the object goes.
class HangingFolder {
public:
    explicit HangingFolder(const std::string &path)
        : m_path(path),
          m_server(open("/dev/fuse", O_RDWR | O_CLOEXEC))
    {
        mkdir(path.c_str(), 0755);
        const std::string options = "fd=" + std::to_string(m_server.get())
            + ",rootmode=40000,user_id=" + std::to_string(geteuid())
            + ",group_id=" + std::to_string(getegid());
        m_isMounted = m_server && mount("hanging", path.c_str(), "fuse", 0, options.c_str()) == 0;
    }
    ~HangingFolder()
    {
        m_server = {};
        if (m_isMounted)
            umount2(m_path.c_str(), MNT_DETACH);
    }
    HangingFolder(const HangingFolder &) = delete;
    HangingFolder &operator=(const HangingFolder &) = delete;

    bool isMounted() const { return m_isMounted; }

private:
    std::string m_path;
    FileDescriptor m_server;
    bool m_isMounted = false;
};

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
    slow.write("ollama/keep", "");
    const HangingFolder hanging(slow.root() + folder.toStdString());
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
