// Real processes under the names and command lines of the frameworks, found among those of this
// machine and checked against a second reader of /proc.

#include "processes/LiveProcess.h"
#include "processes/ProcessBridge.h"
#include "processes/Surveyor.h"

#include <QTest>

#include <algorithm>
#include <cmath>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;

Q_DECLARE_METATYPE(Model)

namespace {

constexpr std::uint64_t MiB = 1 << 20;
constexpr int notPermitted = 77;

/// Within three per cent: the counters of `statm` and `status` may differ by some pages.
bool isAbout(std::uint64_t value, std::uint64_t expected)
{
    const auto difference = static_cast<double>(value) - static_cast<double>(expected);
    return std::abs(difference) <= 0.03 * static_cast<double>(expected);
}

template <typename Rows>
auto find(const Rows &rows, std::int64_t pid)
{
    return std::ranges::find(rows, pid, &Rows::value_type::id);
}

/// Ends this process, a child of the test: becomes an ordinary user who sees /proc with that option
/// at `folder`, and lists the processes below `root`. Status 0 when that one is all it lists.
[[noreturn]] void listAsOrdinaryUser(const char *option, const char *folder,
                                     const std::string &root)
{
    const uid_t user = 100'000 + getpid(); // Who has no other process.
    const bool isReady = unshare(CLONE_NEWNS) == 0
        && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("proc", folder, "proc", 0, option) == 0 && setgid(user) == 0 && setuid(user) == 0;
    if (!isReady)
        _exit(notPermitted);
    const ProcessSource source = linuxProcesses(root);
    const auto all = ProcessBridge::allProcesses(source);
    const bool isRight = all.size() == 1 && all[0].pid == getpid()
        && ProcessBridge::processArgsForPID(getpid(), source)
        && !ProcessBridge::processArgsForPID(getppid(), source);
    _exit(isRight ? 0 : 1);
}

} // namespace

class TestLiveProcesses : public QObject {
    Q_OBJECT

private slots:
    void recognises_data();
    void recognises();
    void ranksThemAndReportsNoLightOne();
    void completesTheNameOfAReplacedExecutable();
    void findsThemAmongAllProcesses();
    void listsWhatAnIndependentReaderSees();
    void listsItsOwnWhereOthersAreHidden_data();
    void listsItsOwnWhereOthersAreHidden();
};

void TestLiveProcesses::recognises_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("framework");
    QTest::addColumn<Model>("model");
    const auto row = [](const QString &name, const QString &arguments, AIFramework framework,
                        const Model &model) {
        QTest::newRow(qPrintable(name + u' ' + arguments))
            << name << QProcess::splitCommand(arguments) << int(framework) << model;
    };
    using enum AIFramework;
    row(u"ollama"_s, u"run llama3.2"_s, ollama, u"llama3.2"_s);
    row(u"koboldcpp-linux-x64"_s, u"--model /models/x.q4_K_M.gguf"_s, koboldCpp,
        u"x.q4_K_M.gguf"_s);
    row(u"LM Studio"_s, u"--type=renderer"_s, lmStudio, {});
    row(u"python3"_s, u"-m vllm.entrypoints.openai.api_server --model=Qwen/Qwen2.5-7B"_s, vllm,
        u"Qwen/Qwen2.5-7B"_s);
    row(u"python3"_s, u"sample.py --ckpt \"/runs/last epoch.ckpt\" -n 4"_s, generic,
        u"last epoch.ckpt"_s);
}

void TestLiveProcesses::recognises()
{
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);
    QFETCH(int, framework);
    QFETCH(Model, model);
    LiveProcess process(name, arguments, 250);
    QVERIFY(process.isReady());
    const ProcView view{process.pid()};
    const Survey survey = Surveyor(view.source()).take();
    const auto footprint = footprintByStatus(process.pid());
    QVERIFY(footprint && isAbout(*footprint, 250 * MiB));

    QCOMPARE(survey.processes.size(), std::size_t(1));
    QCOMPARE(survey.processes[0].id, process.pid());
    QCOMPARE(survey.processes[0].name, name);
    QVERIFY(isAbout(survey.processes[0].memory, *footprint));

    QCOMPARE(survey.workloads.size(), std::size_t(1));
    const AIWorkload &workload = survey.workloads[0];
    QCOMPARE(workload.id, process.pid());
    QCOMPARE(workload.pid, process.pid());
    QCOMPARE(workload.processName, name);
    QCOMPARE(static_cast<int>(workload.framework), framework);
    QCOMPARE(workload.model, model);
    QCOMPARE(workload.memory, survey.processes[0].memory);
}

void TestLiveProcesses::ranksThemAndReportsNoLightOne()
{
    LiveProcess light(u"python3"_s, {u"-m"_s, u"mlx_lm.server"_s}, 150);
    LiveProcess heavy(u"ollama"_s, {u"serve"_s}, 280);
    LiveProcess middle(u"llama-cli"_s, {u"-m"_s, u"x.gguf"_s}, 250);
    QVERIFY(light.isReady() && heavy.isReady() && middle.isReady());
    const Survey survey =
        Surveyor(ProcView{light.pid(), heavy.pid(), middle.pid()}.source()).take();
    QList<qint64> rows;
    for (const ProcessRow &row : survey.processes)
        rows.append(row.id);
    QCOMPARE(rows, (QList<qint64>{heavy.pid(), middle.pid(), light.pid()}));
    QList<qint64> workloads;
    for (const AIWorkload &workload : survey.workloads)
        workloads.append(workload.pid);
    QCOMPARE(workloads, (QList<qint64>{heavy.pid(), middle.pid()}));
}

void TestLiveProcesses::completesTheNameOfAReplacedExecutable()
{
    LiveProcess process(u"koboldcpp-linux-x64"_s, {}, 1);
    QVERIFY(process.isReady());
    process.removeExecutable();
    const auto comm = processText(process.pid(), "comm");
    QCOMPARE(comm, std::optional<QByteArray>("koboldcpp-linux\n"));
    const auto survey = Surveyor(ProcView{process.pid()}.source()).take();
    QCOMPARE(survey.processes.at(0).name, u"koboldcpp-linux-x64"_s);
}

void TestLiveProcesses::findsThemAmongAllProcesses()
{
    LiveProcess process(u"ollama"_s, {u"run"_s, QString(4000, u'x')}, 250);
    QVERIFY(process.isReady());
    const Survey survey = systemSurveys().take({});
    // A machine may have so many heavier processes that this one is off the lists.
    const int heavier = heavierProcesses(240 * MiB);
    if (heavier <= 20) {
        const auto row = find(survey.processes, process.pid());
        QVERIFY(row != survey.processes.end());
        QVERIFY(isAbout(row->memory, 250 * MiB));
    }
    if (heavier <= 80) {
        const auto workload = find(survey.workloads, process.pid());
        QVERIFY(workload != survey.workloads.end());
        QCOMPARE(workload->framework, AIFramework::ollama);
        QCOMPARE(workload->model, Model(QString(4000, u'x')));
    } else {
        QSKIP("More than 80 processes of this machine are heavier.");
    }
}

void TestLiveProcesses::listsWhatAnIndependentReaderSees()
{
    LiveProcess process(u"ollama"_s, {u"serve"_s}, 20);
    QVERIFY(process.isReady());
    const auto all = ProcessBridge::allProcesses();
    int compared = 0;
    for (const std::int64_t pid : {process.pid(), std::int64_t(getpid())}) {
        const auto record = std::ranges::find(all, std::optional(static_cast<std::int32_t>(pid)),
                                              &ProcessRecord::pid);
        QVERIFY(record != all.end());
        QVERIFY(isAbout(*record->memory, footprintByStatus(pid).value_or(0)));
        const auto arguments = ProcessBridge::processArgsForPID(static_cast<std::int32_t>(pid));
        QVERIFY(arguments);
        QByteArray joined;
        for (const std::string &argument : arguments->argv)
            joined += QByteArray::fromStdString(argument) + '\0';
        QCOMPARE(processText(pid, "cmdline"), std::optional(joined));
        ++compared;
    }
    QCOMPARE(compared, 2);
}

void TestLiveProcesses::listsItsOwnWhereOthersAreHidden_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::newRow("others are listed and refuse to be read") << QByteArray("hidepid=1");
    QTest::newRow("others are not listed") << QByteArray("hidepid=2");
}

void TestLiveProcesses::listsItsOwnWhereOthersAreHidden()
{
    QFETCH(QByteArray, option);
    const QTemporaryDir directory;
    const QByteArray folder = directory.filePath(u"proc"_s).toUtf8();
    QVERIFY(chmod(directory.path().toUtf8().constData(), 0755) == 0);
    QVERIFY(mkdir(folder.constData(), 0755) == 0);
    const std::string root = directory.path().toStdString();
    const pid_t child = fork();
    if (child == 0)
        listAsOrdinaryUser(option.constData(), folder.constData(), root);
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    if (WEXITSTATUS(status) == notPermitted)
        QSKIP("Only an administrator can mount /proc so.");
    QCOMPARE(WEXITSTATUS(status), 0);
}

QTEST_GUILESS_MAIN(TestLiveProcesses)
#include "tst_LiveProcesses.moc"
