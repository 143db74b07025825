#include "models/ModelTree.h"
#include "models/OllamaStores.h"
#include "support/HostileDisk.h"

#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

using Names = std::vector<std::string>;

namespace {

const std::string library = "registry.ollama.ai/library/";

Names namesOf(const ModelTree &tree, char digit)
{
    return OllamaStores().namesOf(tree.store(), ModelTree::digest(digit)).names;
}

} // namespace

class TestOllamaStores : public QObject {
    Q_OBJECT

private slots:
    void namesModelsOfTheFirstLayout();
    void namesModelsOfTheNewerLayout();
    void prefersTheNewerLayout();
    void readsChangedManifestsAgain();
    void survivesWhatIsNoStore();
    void readsNothingFromAClosedStore();
    void readsFiveHundredManifests();
    void readsManifestsOfFourMebibytes();
    void stopsWhenTimeRunsOut();
};

void TestOllamaStores::namesModelsOfTheFirstLayout()
{
    const ModelTree tree;
    tree.writeManifest(library + "qwen3/8b", ModelTree::manifest('1'));
    tree.writeManifest(library + "llama3.2/latest", ModelTree::manifest('2'));
    tree.writeManifest("registry.ollama.ai/me/q/8b", ModelTree::manifest('1'));
    tree.writeManifest("hf.co/bartowski/Qwen3-GGUF/Q4_K_M", ModelTree::manifest('1'));
    QVERIFY(namesOf(tree, '1')
            == (Names{"me/q:8b", "qwen3:8b", "hf.co/bartowski/Qwen3-GGUF:Q4_K_M"}));
    QVERIFY(namesOf(tree, '2') == Names{"llama3.2:latest"});
    QVERIFY(namesOf(tree, '3').empty());
    QVERIFY(namesOf(tree, 'e').empty()); // The template's layer is no model.
}

void TestOllamaStores::namesModelsOfTheNewerLayout()
{
    // A manifest, a link to one, a list of two, and a link to a list.
    const ModelTree tree;
    tree.writeManifest(library + "plain/8b", ModelTree::manifest('1'), "manifests-v2");
    tree.writeBlob('a', ModelTree::manifest('2'));
    tree.linkManifest(library + "linked/8b",
                      "../../../../../blobs/sha256-" + ModelTree::digest('a'));
    tree.writeBlob('b', ModelTree::manifest('3'));
    tree.writeManifest(library + "listed/8b", ModelTree::list("ba"), "manifests-v2");
    tree.writeBlob('c', ModelTree::list("b"));
    tree.linkManifest(library + "both/8b", tree.blob('c'));
    QVERIFY(namesOf(tree, '1') == Names{"plain:8b"});
    QVERIFY(namesOf(tree, '2') == (Names{"linked:8b", "listed:8b"}));
    QVERIFY(namesOf(tree, '3') == (Names{"both:8b", "listed:8b"}));
}

void TestOllamaStores::prefersTheNewerLayout()
{
    const ModelTree tree;
    tree.writeManifest(library + "q/8b", ModelTree::manifest('1'));
    tree.writeManifest(library + "old/8b", ModelTree::manifest('1'));
    tree.writeManifest(library + "q/8b", ModelTree::manifest('2'), "manifests-v2");
    QVERIFY(namesOf(tree, '1') == Names{"old:8b"});
    QVERIFY(namesOf(tree, '2') == Names{"q:8b"});
}

void TestOllamaStores::readsChangedManifestsAgain()
{
    const ModelTree tree;
    OllamaStores stores;
    const auto names = [&](char digit) {
        return stores.namesOf(tree.store(), ModelTree::digest(digit)).names;
    };
    tree.writeManifest(library + "q/8b", ModelTree::manifest('1'));
    QVERIFY(names('1') == Names{"q:8b"});
    tree.writeManifest(library + "q/8b", ModelTree::manifest('2') + ' ');
    QVERIFY(names('1').empty());
    QVERIFY(names('2') == Names{"q:8b"});
}

void TestOllamaStores::survivesWhatIsNoStore()
{
    const ModelTree tree;
    QVERIFY(namesOf(tree, '1').empty()); // Nothing there.
    tree.writeManifest(library + "good/8b", ModelTree::manifest('1'));
    tree.writeManifest(library + "cut/8b", ModelTree::manifest('1').substr(0, 200));
    tree.writeManifest(library + "zeros/8b", std::string(5000, '\0'));
    tree.writeManifest(library + "deep/8b/more", ModelTree::manifest('1'));
    tree.writeManifest("shallow", ModelTree::manifest('1'));
    tree.writeManifest(library + "huge/8b", "{");
    const std::string huge = tree.store() + "/manifests/" + library + "huge/8b";
    QVERIFY(truncate(huge.c_str(), std::int64_t(4) << 30) == 0);
    QVERIFY(mkfifo((tree.store() + "/manifests/" + library + "fifo").c_str(), 0600) == 0);
    QVERIFY(mkfifo((tree.store() + "/manifests/" + library + "good/fifo").c_str(), 0600) == 0);
    // Links: in a circle, out of the store, to nothing, and a folder that leads to itself.
    tree.linkManifest(library + "q/loop", "loop");
    tree.writeManifest("outside", ModelTree::manifest('1'), "..");
    tree.linkManifest(library + "q/outside", tree.root() + "/outside");
    tree.linkManifest(library + "q/nothing", tree.blob('d'));
    tree.linkManifest(library + "self", ".");
    tree.writeBlob('a', ModelTree::list("a")); // A list that lists itself.
    tree.linkManifest(library + "q/itself", tree.blob('a'));
    QVERIFY(namesOf(tree, '1') == Names{"good:8b"});
}

void TestOllamaStores::readsNothingFromAClosedStore()
{
    const ModelTree tree;
    tree.writeManifest(library + "q/8b", ModelTree::manifest('1'));
    QVERIFY(chmod(tree.store().c_str(), 0) == 0);
    {
        const OrdinaryUser user;
        const auto answer = OllamaStores().namesOf(tree.store(), ModelTree::digest('1'));
        QVERIFY(answer.names.empty() && answer.isComplete);
    }
    QVERIFY(chmod(tree.store().c_str(), 0700) == 0);
}

void TestOllamaStores::readsFiveHundredManifests()
{
    const ModelTree tree;
    for (int i = 0; i < 600; ++i)
        tree.writeManifest(library + "m" + std::to_string(1000 + i) + "/8b",
                           ModelTree::manifest('1'));
    OllamaStores stores;
    const auto answer = stores.namesOf(tree.store(), ModelTree::digest('1'));
    QVERIFY(answer.isComplete);
    QCOMPARE(answer.names.size(), OllamaStores::mostManifests);
    QCOMPARE(stores.namesOf(tree.store(), ModelTree::digest('1')).names.size(),
             OllamaStores::mostManifests);
}

void TestOllamaStores::readsManifestsOfFourMebibytes()
{
    const ModelTree tree;
    const std::string manifest = ModelTree::manifest('1');
    const std::size_t room = OllamaStores::longestManifest - manifest.size();
    tree.writeManifest(library + "longest/8b", manifest + std::string(room, ' '));
    tree.writeManifest(library + "longer/8b", manifest + std::string(room + 1, ' '));
    QVERIFY(namesOf(tree, '1') == Names{"longest:8b"});
}

void TestOllamaStores::stopsWhenTimeRunsOut()
{
    const ModelTree tree;
    for (const char *name : {"a", "b", "c"})
        tree.writeManifest(library + name + "/8b", ModelTree::manifest('1'));
    OllamaStores stores;
    int asked = 0;
    const auto afterTheFirst = [&asked] { return ++asked > 9; };
    const auto cut = stores.namesOf(tree.store(), ModelTree::digest('1'), afterTheFirst);
    QVERIFY(!cut.isComplete);
    QVERIFY(cut.names.size() < 3);
    QCOMPARE(stores.namesOf(tree.store(), ModelTree::digest('1')).names.size(), std::size_t(3));
}

QTEST_APPLESS_MAIN(TestOllamaStores)
#include "tst_OllamaStores.moc"
