#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace corvane {

/// The most jobs that run at the same time, so that a system call that hangs cannot pile up
/// threads.
inline constexpr int mostBackgroundJobs = 16;

/// Runs `job` on a thread of its own at low priority, then `deliver` on the owner's thread, which
/// must be the caller's. What `job` writes is visible to `deliver`. Once the owner is gone,
/// `deliver` is not called. A job that still runs at the end of the program is abandoned, so it
/// must not use anything that ends with `main`. False when the job is not run: too many run, or the
/// system refuses a thread.
bool runThenCall(QObject *owner, std::function<void()> job, std::function<void()> deliver);

/// The same for a job that may report before its end. Each report leads to one call of `onReport`
/// on the owner's thread, in order and before `deliver`.
bool runThenCall(QObject *owner, std::function<void(const std::function<void()> &report)> job,
                 std::function<void()> onReport, std::function<void()> deliver);

/// The same for a job that returns a value, which is passed to `deliver`. Jobs may overlap; values
/// are delivered in the order in which the jobs finish.
template <typename Job, typename Deliver>
bool runThenDeliver(QObject *owner, Job job, Deliver deliver)
{
    const auto value = std::make_shared<std::optional<std::invoke_result_t<Job &>>>();
    return runThenCall(
        owner, [value, job = std::move(job)]() mutable { value->emplace(job()); },
        [value, deliver = std::move(deliver)]() mutable { deliver(std::move(**value)); });
}

/// Whether a job runs. What it uses of the libraries must then not be destroyed at the end of the
/// program.
bool isRunningBackgroundJobs();

} // namespace corvane
