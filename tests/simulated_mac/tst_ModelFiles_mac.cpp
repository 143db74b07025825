#include "models/ModelFiles.h"
#include "models/ModelResolver.h"
#include "processes/ProcessSource.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

using Mapped = std::vector<MappedFile>;
using Paths = std::vector<std::string>;

namespace {

constexpr std::uint64_t page = 16384;

} // namespace

class TestModelFilesOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void seesWhatAProcessUses();
    void seesNothingOfProcessesOfOthers();
    void findsParentAndFolder();
    void namesTheModelOfAMappedFile();
    void survivesFailingCalls_data();
    void survivesFailingCalls();

private:
    static void run(const Process &process)
    {
        const MutexLock lock(mac().processesMutex);
        mac().machine.processes = {process};
    }

    const ModelFiles m_files = ModelFiles::system();
};

void TestModelFilesOnMac::init()
{
    mac().boot(baseM1());
    run({.pid = 500,
         .name = "node",
         .parent = 400,
         .folder = "/Users/me/ComfyUI",
         .openFiles = {"/dev/null", "/m/b.safetensors", "/m/notes.txt", "/m/c.gguf"},
         .mappings = {{"/usr/lib/dyld", page},
                      {"/m/a.gguf", 3 * page},
                      {"", page},
                      {"/m/a.gguf", page},
                      {"/m/b.safetensors", page}}});
}

void TestModelFilesOnMac::seesWhatAProcessUses()
{
    QVERIFY((m_files.mapped(500) == Mapped{{"/m/a.gguf", 4 * page}, {"/m/b.safetensors", page}}));
    QVERIFY((m_files.opened(500) == Paths{"/m/b.safetensors", "/m/c.gguf"}));
    QCOMPARE(m_files.reachable(500, "/m/a.gguf"), std::string("/m/a.gguf"));
}

void TestModelFilesOnMac::seesNothingOfProcessesOfOthers()
{
    run({.pid = 500,
         .inspectable = false,
         .openFiles = {"/m/c.gguf"},
         .mappings = {{"/m/a.gguf", page}}});
    for (const int pid : {500, 501, 0, -1}) {
        QVERIFY(m_files.mapped(pid).empty());
        QVERIFY(m_files.opened(pid).empty());
    }
}

void TestModelFilesOnMac::findsParentAndFolder()
{
    const ProcessSource source = ProcessSource::system();
    QCOMPARE(source.parent(500), std::optional<std::int32_t>(400));
    QCOMPARE(source.folder(500), std::optional<std::string>("/Users/me/ComfyUI"));
    QVERIFY(!source.parent(501));
    QVERIFY(!source.folder(501));
    faults().failAlways(Call::proc_pidinfo, Way::error);
    QVERIFY(!source.parent(500));
    QVERIFY(!source.folder(500));
}

void TestModelFilesOnMac::namesTheModelOfAMappedFile()
{
    ModelResolver resolver(m_files, ProcessSource::system().folder);
    const ModelFinding finding = resolver.resolve({.id = 500, .pid = 500});
    QCOMPARE(finding.model, std::optional(u"a.gguf"_s));
    QCOMPARE(finding.details.origin, ModelOrigin::usedFile);
    QCOMPARE(finding.details.mappedBytes, std::optional<std::uint64_t>(5 * page));
}

void TestModelFilesOnMac::survivesFailingCalls_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    QTest::newRow("no regions and no list")
        << static_cast<int>(Call::proc_pidinfo) << static_cast<int>(Way::error);
    QTest::newRow("descriptors that closed meanwhile")
        << static_cast<int>(Call::proc_pidfdinfo) << static_cast<int>(Way::error);
    QTest::newRow("descriptors with a path that is no text")
        << static_cast<int>(Call::proc_pidfdinfo) << static_cast<int>(Way::garbage);
}

void TestModelFilesOnMac::survivesFailingCalls()
{
    QFETCH(int, call);
    QFETCH(int, way);
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    QVERIFY(m_files.opened(500).empty());
    QCOMPARE(m_files.mapped(500).empty(), static_cast<Call>(call) == Call::proc_pidinfo);
}

QTEST_APPLESS_MAIN(TestModelFilesOnMac)
#include "tst_ModelFiles_mac.moc"
