#include "gpuclients/DrmClientFiles_linux.h"

#include "support/MachineTree.h"

#include <QTest>

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

using namespace corvane;
using corvane::test::MachineTree;

namespace {

using Ids = std::vector<std::string>;

const std::string text = "drm-driver:\tamdgpu\ndrm-pdev:\t0000:c1:00.0\ndrm-client-id:\t";

/// A tree with the descriptors of process 7.
class Bench {
public:
    MachineTree tree;

    void open(int descriptor, const std::string &target, const std::string &fdinfo) const
    {
        const std::string folder = tree.root() + "/proc/7/fd/";
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink(target, folder + std::to_string(descriptor));
        tree.write("proc/7/fdinfo/" + std::to_string(descriptor), fdinfo);
    }

    /// The clients' identities, sorted.
    Ids ids(double now = 100)
    {
        Ids found;
        for (const DrmClient &client : m_files.clientsOf(7, {"renderD128", "card1"}, now))
            found.push_back(client.id);
        std::ranges::sort(found);
        return found;
    }

private:
    DrmClientFiles m_files{tree.root()};
};

} // namespace

class TestDrmClientFiles : public QObject {
    Q_OBJECT

private slots:
    void readsDescriptorsOfTheseGPUs();
    void remembersDescriptorsForTenSeconds();
    void whatCannotBeReadIsLeftOut();
    void looksAtSomeOfManyDescriptors();
};

void TestDrmClientFiles::readsDescriptorsOfTheseGPUs()
{
    Bench bench;
    bench.open(3, "/dev/dri/renderD128", text + "42\n");
    bench.open(4, "/dev/dri/card1", text + "43\n");
    bench.open(5, "/dev/dri/renderD129", text + "44\n"); // One that sleeps.
    bench.open(6, "/dev/null", text + "45\n");
    bench.open(7, "socket:[12345]", text + "46\n");
    bench.open(8, "/dev/dri/renderD128", "drm-pdev:\t0000:c1:00.0\n"); // Told apart all the same.
    QCOMPARE(bench.ids(), (Ids{"42", "43", "7/8"}));
}

void TestDrmClientFiles::remembersDescriptorsForTenSeconds()
{
    Bench bench;
    bench.open(3, "/dev/dri/renderD128", text + "42\n");
    QCOMPARE(bench.ids(100), Ids{"42"});
    bench.open(4, "/dev/dri/renderD128", text + "43\n");
    bench.tree.write("proc/7/fdinfo/3", text + "44\n");
    QCOMPARE(bench.ids(109), Ids{"44"});
    QCOMPARE(bench.ids(110), (Ids{"43", "44"}));
}

void TestDrmClientFiles::whatCannotBeReadIsLeftOut()
{
    Bench bench;
    QVERIFY(bench.ids().empty()); // No such process.
    bench.open(3, "/dev/dri/renderD128", "");
    bench.open(4, "/dev/dri/renderD128", "pos:\t0\n");
    bench.open(5, "/dev/dri/renderD128", text + "42\n");
    bench.tree.remove("proc/7/fdinfo/5");
    QCOMPARE(::mkfifo((bench.tree.root() + "/proc/7/fdinfo/5").c_str(), 0600), 0);
    QVERIFY(bench.ids(200).empty());
}

void TestDrmClientFiles::looksAtSomeOfManyDescriptors()
{
    Bench bench;
    for (int descriptor = 0; descriptor < 100; ++descriptor)
        bench.open(descriptor, "/dev/dri/renderD128", text + std::to_string(descriptor) + '\n');
    QCOMPARE(bench.ids().size(), std::size_t(64));
}

QTEST_GUILESS_MAIN(TestDrmClientFiles)
#include "tst_DrmClientFiles.moc"
