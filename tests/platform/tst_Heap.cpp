#include "platform/Heap.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelText.h"
#include "support/ProcessState.h"

#include <QTest>

#include <thread>

using namespace corvane;

class TestHeap : public QObject {
    Q_OBJECT

private slots:
    void returnsFreeMemory();
    void sharesOneHeap();
};

namespace {

/// Memory of this process that belongs to no file.
qint64 anonymousBytes()
{
    const std::string status = readKernelFile("/proc/self/status").value_or(std::string());
    std::string_view text = status;
    while (const auto line = takeKeyValue(text)) {
        if (line->key == "RssAnon")
            return static_cast<qint64>(parseKibibytes(line->value).value_or(0)) * 1024;
    }
    return 0;
}

/// Many small blocks, all of them written to.
std::vector<std::unique_ptr<char[]>> smallBlocks(std::size_t bytes)
{
    constexpr std::size_t size = 1024;
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t i = 0; i < bytes / size; ++i) {
        blocks.push_back(std::make_unique<char[]>(size));
        blocks.back()[0] = 1;
    }
    return blocks;
}

constexpr qint64 megabyte = 1 << 20;

} // namespace

void TestHeap::returnsFreeMemory()
{
    if (test::heapInUse() == 0)
        QSKIP("another allocator stands in");
    const qint64 before = anonymousBytes();
    std::vector<std::unique_ptr<char[]>> blocks = smallBlocks(32 * megabyte);
    const std::unique_ptr<char[]> keepsTheTop = std::move(blocks.back());
    blocks.clear();
    QVERIFY(anonymousBytes() - before > 24 * megabyte);
    returnFreeMemory();
    QVERIFY(anonymousBytes() - before < 4 * megabyte);
    QVERIFY(keepsTheTop);
}

void TestHeap::sharesOneHeap()
{
    if (test::heapInUse() == 0)
        QSKIP("another allocator stands in");
    // This thread reuses what another one freed: the heap does not grow again.
    shareOneHeap();
    const auto keepsTheTop = [] {
        std::vector<std::unique_ptr<char[]>> blocks = smallBlocks(32 * megabyte);
        return std::move(blocks.back());
    };
    std::unique_ptr<char[]> last;
    std::thread([&] { last = keepsTheTop(); }).join();
    const qint64 before = anonymousBytes();
    const std::unique_ptr<char[]> again = keepsTheTop();
    QVERIFY(anonymousBytes() - before < 4 * megabyte);
    QVERIFY(last && again);
}

QTEST_APPLESS_MAIN(TestHeap)
#include "tst_Heap.moc"
