#include "models/ModelNames.h"

#include <QTest>

#include <atomic>
#include <future>
#include <thread>

using namespace corvane;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;
using std::chrono::seconds;

namespace {

constexpr std::chrono::milliseconds noPatience(1);

/// Processes that map a file each; counts the looks. Files of silent ones do not answer before the
/// end of the test.
class Machine {
public:
    ~Machine() { m_end.set_value(); }

    std::shared_ptr<ModelResolver> resolver()
    {
        return std::make_shared<ModelResolver>(
            ModelFiles{.mapped =
                           [this](std::int32_t pid) {
                               ++looks;
                               return mappedBy(pid);
                           },
                       .opened = [](std::int32_t) { return std::vector<std::string>(); },
                       .reachable = [](std::int32_t, const std::string &path) { return path; }},
            nullptr);
    }

    ModelNames::Clock clock()
    {
        return [this] { return std::chrono::steady_clock::time_point(time); };
    }

    std::shared_ptr<ModelResolver> silent(std::int32_t pid)
    {
        return std::make_shared<ModelResolver>(
            ModelFiles{.mapped =
                           [looks = m_silentLooks, ended = m_ended, pid](std::int32_t asked) {
                               ++*looks;
                               if (pid == 0 || asked == pid)
                                   ended.wait();
                               return std::vector<MappedFile>{{"/m/a.gguf", 5}};
                           },
                       .opened = [](std::int32_t) { return std::vector<std::string>(); },
                       .reachable = [](std::int32_t, const std::string &path) { return path; }},
            nullptr);
    }

    int silentLooks() const { return *m_silentLooks; }

    std::atomic<int> looks = 0;
    std::atomic<bool> isLoaded = true;
    seconds time = seconds(1000);

private:
    std::vector<MappedFile> mappedBy(std::int32_t pid) const
    {
        if (!isLoaded)
            return {};
        return {{"/m/" + std::to_string(pid) + ".gguf", 100}};
    }

    std::promise<void> m_end;
    std::shared_future<void> m_ended = m_end.get_future().share();
    std::shared_ptr<std::atomic<int>> m_silentLooks = std::make_shared<std::atomic<int>>(0);
};

AIWorkload workload(std::int64_t pid, const Model &model = {}, std::uint64_t startTime = 1)
{
    return {.id = pid, .pid = pid, .model = model, .startTime = startTime};
}

QStringList named(ModelNames &names, std::vector<AIWorkload> workloads)
{
    names.name(workloads);
    QStringList models;
    for (const AIWorkload &one : workloads)
        models.append(one.model.value_or(u"-"_s));
    return models;
}

} // namespace

class TestModelNames : public QObject {
    Q_OBJECT

private slots:
    void looksOnceAtASettledProcess();
    void looksAgainAtWhatMayChange();
    void looksAtAnotherProcessOfTheSameNumber();
    void leavesAProcessAloneWhoseFilesDoNotAnswer();
    void waitsForNoMoreThanTwo();
    void isSafeFromManyThreads();
};

void TestModelNames::looksOnceAtASettledProcess()
{
    Machine machine;
    ModelNames names(machine.resolver(), ModelNames::filesPatience, machine.clock());
    for (int survey = 0; survey < 50; ++survey) {
        QCOMPARE(named(names, {workload(7, u"qwen3:8b"_s)}), QStringList{u"qwen3:8b"_s});
        machine.time += seconds(3);
    }
    QCOMPARE(machine.looks.load(), 1);
    named(names, {});
    named(names, {workload(7, u"qwen3:8b"_s)}); // It was gone meanwhile.
    QCOMPARE(machine.looks.load(), 2);
}

void TestModelNames::looksAgainAtWhatMayChange()
{
    // Nothing is loaded yet: after 3, 6, 12, 24, 48 and then each 60 s.
    Machine machine;
    machine.isLoaded = false;
    ModelNames names(machine.resolver(), ModelNames::filesPatience, machine.clock());
    QList<int> looked;
    for (int second = 0; second <= 240; second += 3) {
        const int before = machine.looks;
        QCOMPARE(named(names, {workload(7)}), QStringList{u"-"_s});
        if (machine.looks != before)
            looked.append(second);
        machine.time += seconds(3);
    }
    QCOMPARE(looked, (QList<int>{0, 3, 9, 21, 45, 93, 153, 213}));
    machine.isLoaded = true;
    machine.time += seconds(60);
    QCOMPARE(named(names, {workload(7)}), QStringList{u"7.gguf"_s});
}

void TestModelNames::looksAtAnotherProcessOfTheSameNumber()
{
    Machine machine;
    ModelNames names(machine.resolver(), ModelNames::filesPatience, machine.clock());
    named(names, {workload(7, u"a"_s, 1)});
    QCOMPARE(named(names, {workload(7, u"b"_s, 2)}), QStringList{u"b"_s});
    QCOMPARE(named(names, {workload(7, u"c"_s, 2)}), QStringList{u"c"_s});
    QCOMPARE(machine.looks.load(), 3);
}

void TestModelNames::leavesAProcessAloneWhoseFilesDoNotAnswer()
{
    Machine machine;
    ModelNames names(machine.silent(7), std::chrono::milliseconds(1000), machine.clock());
    const std::vector<AIWorkload> both{workload(7, u"blob 1234"_s), workload(8)};
    for (int survey = 0; survey < 5; ++survey) {
        QCOMPARE(named(names, both), (QStringList{u"blob 1234"_s, u"a.gguf"_s}));
        named(names, {}); // Not even after it has left the ranking.
    }
    QCOMPARE(machine.silentLooks(), 6);
}

void TestModelNames::waitsForNoMoreThanTwo()
{
    Machine machine;
    ModelNames names(machine.silent(0), noPatience, machine.clock());
    std::vector<AIWorkload> many;
    for (int pid = 1; pid <= 40; ++pid)
        many.push_back(workload(pid, u"x"_s));
    for (int survey = 0; survey < 3; ++survey) {
        QCOMPARE(named(names, many), QStringList(40, u"x"_s));
        machine.time += seconds(60);
    }
    QTRY_COMPARE(machine.silentLooks(), 2);
}

void TestModelNames::isSafeFromManyThreads()
{
    Machine machine;
    ModelNames names(machine.resolver(), ModelNames::filesPatience, machine.clock());
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&names, &wrong, thread] {
            for (int survey = 0; survey < 20; ++survey) {
                std::vector<AIWorkload> workloads{workload(thread % 2 + 1), workload(9)};
                names.name(workloads);
                wrong += workloads[1].model == Model(u"9.gguf"_s) ? 0 : 1;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(TestModelNames)
#include "tst_ModelNames.moc"
