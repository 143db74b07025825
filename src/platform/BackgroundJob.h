#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace corvane {

/// Jobs that run at the same time, at the most. One that comes on top is not run and delivers
/// nothing, so that a system call that hangs cannot pile up threads.
inline constexpr int mostBackgroundJobs = 16;

/// Runs `job` on a thread of its own at low priority, then `deliver` on the owner's thread, which
/// is the caller's. What is written by the one is visible to the other. Once the owner is gone,
/// `deliver` is not called; a job that still runs at the end of the program is abandoned, so it
/// must touch nothing that ends with `main`.
void runThenCall(QObject *owner, std::function<void()> job, std::function<void()> deliver);

/// The same for a job from nothing to a value, handed to `deliver`. Jobs may overlap; values are
/// delivered in the order in which the jobs finish.
template <typename Job, typename Deliver>
void runThenDeliver(QObject *owner, Job job, Deliver deliver)
{
    const auto value = std::make_shared<std::optional<std::invoke_result_t<Job &>>>();
    runThenCall(
        owner, [value, job = std::move(job)]() mutable { value->emplace(job()); },
        [value, deliver = std::move(deliver)]() mutable { deliver(std::move(**value)); });
}

} // namespace corvane
