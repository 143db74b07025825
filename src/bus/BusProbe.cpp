#include "bus/BusProbe.h"

#include "threads/MainThread.h"

#include <QSocketNotifier>

#include <algorithm>

#include <poll.h>

namespace corvane {

namespace {

using State = BusHandshake::State;

bool isOver(State state)
{
    return state != State::connecting && state != State::waiting;
}

} // namespace

BusProbe::BusProbe(const QString &address, QObject *parent) : QObject(parent), m_handshake(address)
{
    assertMainThread();
    follow();
}

BusProbe::~BusProbe() = default;

void BusProbe::follow()
{
    const State state = m_handshake.state();
    if (isOver(state)) {
        const bool hasAnswered = state == State::answered || state == State::unknown;
        QMetaObject::invokeMethod(this, hasAnswered ? &BusProbe::answered : &BusProbe::refused,
                                  Qt::QueuedConnection);
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(
        m_handshake.descriptor(),
        state == State::connecting ? QSocketNotifier::Write : QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        // The descriptor may be closed, and the notifier is in use until this function returns.
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
        m_handshake.goOn();
        follow();
    });
}

bool busHangs(const QString &address, std::chrono::milliseconds timeout)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + timeout;
    BusHandshake handshake(address);
    while (!isOver(handshake.state())) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        const short events = handshake.state() == State::connecting ? POLLOUT : POLLIN;
        pollfd answer = {.fd = handshake.descriptor(), .events = events, .revents = 0};
        if (left.count() <= 0 || poll(&answer, 1, static_cast<int>(left.count())) == 0)
            return true;
        handshake.goOn();
    }
    return handshake.state() != State::answered && handshake.state() != State::refused;
}

} // namespace corvane
