#include "platform/FileDescriptor.h"
#include "platform/Wipe.h"
#include "processes/ProcTree.h"
#include "processes/Surveyor.h"

#include <QCoreApplication>
#include <QTest>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <span>

#include <fcntl.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t length = 48;

/// The part that is searched for: the allocator writes into the first bytes of what is given back.
constexpr std::size_t tail = 24;

/// A text of which this process has no copy but those that others make: the highest bit of each
/// letter is set.
class Secret {
public:
    Secret()
    {
        std::random_device random;
        for (char &letter : m_masked)
            letter = char(('a' + random() % 26) | mask);
    }

    char letter(std::size_t place) const { return char(m_masked[place] & ~mask); }

    /// Whether its tail stands there, `width` bytes to a letter.
    bool isAt(const char *bytes, std::size_t width) const
    {
        for (std::size_t i = 0; i < length - tail; ++i) {
            if (bytes[i * width] != letter(tail + i) || (width == 2 && bytes[i * width + 1] != 0))
                return false;
        }
        return true;
    }

private:
    static constexpr int mask = 0x80;

    std::array<char, length> m_masked = {};
};

int copiesIn(std::span<const char> bytes, const Secret &secret)
{
    int copies = 0;
    const char first = secret.letter(tail);
    const char *const end = bytes.data() + bytes.size() - 2 * length;
    for (const char *at = bytes.data(); at < end; ++at) {
        at = static_cast<const char *>(std::memchr(at, first, std::size_t(end - at)));
        if (!at)
            break;
        copies += secret.isAt(at, 1) || secret.isAt(at, 2) ? 1 : 0;
    }
    return copies;
}

/// In the memory that this process may write, given back or not. Absent where there is too much of
/// it, as under a sanitizer.
std::optional<int> copiesInMemory(const Secret &secret)
{
    constexpr std::size_t most = std::size_t(1) << 30;
    static std::array<char, 1 << 16> chunk;
    std::ifstream maps("/proc/self/maps");
    const FileDescriptor memory(open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
    int copies = 0;
    std::size_t total = 0;
    for (std::string line; std::getline(maps, line);) {
        std::size_t from = 0;
        std::size_t to = 0;
        if (std::sscanf(line.c_str(), "%zx-%zx rw", &from, &to) != 2
            || line.find(" rw") == std::string::npos)
            continue;
        total += to - from;
        if (total > most)
            return std::nullopt;
        for (std::size_t at = from; at < to; at += chunk.size() - 2 * length) {
            chunk.fill(0); // It is a part of that memory, too.
            const auto size = std::min(chunk.size(), to - at);
            if (pread(memory.get(), chunk.data(), size, off_t(at)) > 0)
                copies += copiesIn(chunk, secret);
        }
    }
    chunk.fill(0);
    return copies;
}

/// Writes a command line with a NUL for each '|' and the secret for each '?'.
void writeCommandLine(const std::string &path, std::string_view text, const Secret &secret)
{
    std::array<char, 256> bytes = {};
    std::size_t size = 0;
    for (const char c : text) {
        if (c != '?')
            bytes.at(size++) = c == '|' ? '\0' : c;
        else
            for (std::size_t i = 0; i < length; ++i)
                bytes.at(size++) = secret.letter(i);
    }
    const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    QCOMPARE(write(file.get(), bytes.data(), size), ssize_t(size));
    wipe(bytes);
}

} // namespace

/// Command lines may hold passwords: nothing of them stays in the memory of the program.
class TestForgottenArguments : public QObject {
    Q_OBJECT

private slots:
    void findsWhatIsInMemory();
    void leavesNoSecretInMemory_data();
    void leavesNoSecretInMemory();
};

void TestForgottenArguments::findsWhatIsInMemory()
{
    const Secret secret;
    const auto before = copiesInMemory(secret);
    if (!before)
        QSKIP("Too much memory to be searched.");
    QCOMPARE(*before, 0);
    std::string narrow;
    QString wide;
    for (std::size_t i = 0; i < length; ++i) {
        narrow.push_back(secret.letter(i));
        wide.append(QLatin1Char(secret.letter(i)));
    }
    QVERIFY(copiesInMemory(secret) >= 2);
}

void TestForgottenArguments::leavesNoSecretInMemory_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<std::string>("commandLine");
    QTest::addColumn<int>("workloads");
    const auto row = [](const char *title, const QByteArray &name, const std::string &commandLine,
                        int workloads) {
        QTest::newRow(title) << name << commandLine << workloads;
    };
    row("behind an option of a server in Python", "python3\n", "python3|-m|vllm|--api-key|?|", 1);
    row("behind its equals sign", "python3\n", "python3|-m|vllm|--api-key=?|", 1);
    row("of a server that the further rules know", "sglang\n",
        "python3|/bin/sglang|serve|--model-path|a/b|--api-key|?|", 1);
    row("of llama.cpp", "llama-server\n", "llama-server|-m|/m/q.gguf|--api-key|?|", 1);
    row("in an address", "ollama\n", "ollama|run|a|--registry|https://me:?@example.org/|", 1);
    row("of a script that is no workload", "python3\n", "python3|app.py|--password|?|", 0);
}

void TestForgottenArguments::leavesNoSecretInMemory()
{
    QFETCH(QByteArray, name);
    QFETCH(std::string, commandLine);
    QFETCH(int, workloads);
    const Secret secret;
    ProcTree tree;
    tree.add(7, {.own = std::uint64_t(400) << 20, .comm = name});
    writeCommandLine(tree.root() + "/proc/7/cmdline", commandLine, secret);
    Surveyor surveyor(tree.source());
    QCOMPARE(surveyor.take().workloads.size(), std::size_t(workloads));
    const auto copies = copiesInMemory(secret);
    if (!copies)
        QSKIP("Too much memory to be searched.");
    QCOMPARE(*copies, 0);
}

/// With all symbols resolved at the start, as in a release: later on, the loader saves registers to
/// the stack, among them what was copied last.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("LD_BIND_NOW")) {
        qputenv("LD_BIND_NOW", "1");
        execv("/proc/self/exe", argv);
        return EXIT_FAILURE;
    }
    const QCoreApplication application(argc, argv);
    TestForgottenArguments test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ForgottenArguments.moc"
