#include "threads/TimedCalls.h"

#include <QTest>

#include <atomic>
#include <future>
#include <string>

using namespace corvane;
using Outcome = TimedCalls::Outcome;

namespace {

constexpr std::chrono::milliseconds soon(20);
constexpr std::chrono::minutes late(1);

/// Calls of it wait until the test opens it; they may go on when the test is over.
class Gate {
public:
    std::function<int()> call() const
    {
        return [opened = m_opened] {
            opened.wait();
            return 1;
        };
    }

    void open() { m_promise.set_value(); }

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_opened = m_promise.get_future().share();
};

std::function<int()> returning(int value)
{
    return [value] { return value; };
}

} // namespace

class TestTimedCalls : public QObject {
    Q_OBJECT

private slots:
    void returnsTheValue();
    void leavesASlowCallToItself();
    void refusesWhileTooManyCallsAreLeftToThemselves();
    void countsCallsThatAnswerAtTheLastMoment();
};

void TestTimedCalls::returnsTheValue()
{
    TimedCalls calls(1);
    const auto result = calls.call<std::string>([] { return std::string(100, 'x'); }, late);
    QCOMPARE(result.outcome, Outcome::answered);
    QCOMPARE(result.value, std::string(100, 'x'));
}

void TestTimedCalls::leavesASlowCallToItself()
{
    TimedCalls calls(2);
    Gate gate;
    const auto slow = calls.call(gate.call(), soon);
    QCOMPARE(slow.outcome, Outcome::tooSlow);
    QVERIFY(!slow.value);
    QCOMPARE(calls.call(returning(2), late).value, std::optional(2));
    gate.open();
}

void TestTimedCalls::refusesWhileTooManyCallsAreLeftToThemselves()
{
    TimedCalls calls(2);
    Gate gate;
    QCOMPARE(calls.call(gate.call(), soon).outcome, Outcome::tooSlow);
    QCOMPARE(calls.call(gate.call(), soon).outcome, Outcome::tooSlow);
    QCOMPARE(calls.call(returning(2), late).outcome, Outcome::refused);
    gate.open();
    QTRY_COMPARE(calls.call(returning(2), late).outcome, Outcome::answered);
}

/// Whichever comes first, the answer or the end of the patience, the call is over afterwards.
void TestTimedCalls::countsCallsThatAnswerAtTheLastMoment()
{
    TimedCalls calls(1);
    int answered = 0;
    for (int i = 0; i < 300; ++i) {
        const auto result = calls.call(returning(i), std::chrono::milliseconds(0));
        QCOMPARE(result.value.has_value(), result.outcome == Outcome::answered);
        answered += result.outcome == Outcome::answered ? 1 : 0;
    }
    QVERIFY(answered <= 300);
    QTRY_COMPARE(calls.call(returning(1), late).outcome, Outcome::answered);
}

QTEST_APPLESS_MAIN(TestTimedCalls)
#include "tst_TimedCalls.moc"
