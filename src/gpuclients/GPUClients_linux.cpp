#include "gpuclients/GPUClients.h"

#include "gpu/GPUSleepGate.h"
#include "gpuclients/DrmClientFiles_linux.h"
#include "gpuclients/DrmLoads.h"
#include "gpuclients/KfdFiles_linux.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>
#include <map>
#include <set>
#include <string_view>

#include <unistd.h>

namespace corvane {

namespace {

using State = GPUAccess::State;

/// A vendor's library tells the numbers that processes have on the host. In a container they are
/// those of other processes, or of none.
bool seesHostProcesses(const std::string &root)
{
    constexpr std::string_view host = "pid:[4026531836]"; // PROC_PID_INIT_INO of the kernel.
    std::array<char, 64> target = {};
    const ssize_t length =
        readlink((root + "/proc/self/ns/pid").c_str(), target.data(), target.size());
    return length <= 0 || std::string_view(target.data(), std::size_t(length)) == host;
}

/// Whether there are files about its clients that may be read.
bool hasFiles(const GPUAccess &gpu)
{
    return gpu.state == State::open && !gpu.folder.empty();
}

/// It may have fallen asleep since the tick.
bool isAwake(const GPUAccess &gpu)
{
    const auto status = readKernelFile(gpu.folder + "/power/runtime_status");
    return GPUSleepGate().admits(status);
}

/// Shares of the time of each class of engines; the busiest class stands for the whole GPU.
class BusyShares {
public:
    void add(const std::map<std::string, double> &shares)
    {
        for (const auto &[engine, share] : shares)
            m_shares[engine] += share;
    }

    std::optional<double> busiest() const
    {
        std::optional<double> most;
        for (const auto &[engine, share] : m_shares)
            most = std::max(most.value_or(0), std::min(share, 1.0));
        return most;
    }

private:
    std::map<std::string, double> m_shares = {};
};

/// What the clients of one process have of one GPU.
struct ClientSum {
    std::optional<std::uint64_t> bytes = {};
    BusyShares shares = {};
};

} // namespace

struct GPUClients::System {
    std::shared_ptr<GPUHandOver> handOver;
    std::string root;
    std::function<double()> clock;
    bool seesHost = seesHostProcesses(root);

    Mutex mutex = {};
    DrmClientFiles files GUARDED_BY(mutex) = DrmClientFiles(root);
    KfdFiles kfd GUARDED_BY(mutex) = KfdFiles(root);
    DrmLoads loads GUARDED_BY(mutex) = {};
    std::map<std::string, GPUAccess> open GUARDED_BY(mutex) = {}; ///< By address.
    std::vector<GPUUse> last GUARDED_BY(mutex) = {};
    std::atomic<bool> busy = false; ///< A call is under way.

    std::vector<GPUUse> kept(const std::vector<GPUAccess> &gpus) REQUIRES(mutex);
    std::vector<GPUUse> readClients(const std::vector<std::int32_t> &pids, double now)
        REQUIRES(mutex);
};

namespace {

/// Lets one call in at a time without waiting: one that hangs would hold up every survey.
class Turn {
public:
    explicit Turn(std::atomic<bool> &busy) : m_busy(busy), m_mine(!busy.exchange(true)) { }
    ~Turn()
    {
        if (m_mine)
            m_busy = false;
    }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    explicit operator bool() const { return m_mine; }

private:
    std::atomic<bool> &m_busy;
    bool m_mine;
};

} // namespace

GPUClients::GPUClients(std::shared_ptr<GPUHandOver> handOver, std::string root,
                       std::function<double()> clock)
    : m_system(new System{
        .handOver = std::move(handOver), .root = std::move(root), .clock = std::move(clock)})
{
}

GPUClients::~GPUClients() = default;

/// What was known last of GPUs that are left alone, as far as the processes still run.
std::vector<GPUUse> GPUClients::System::kept(const std::vector<GPUAccess> &gpus)
{
    std::vector<GPUUse> uses;
    for (const GPUUse &use : last) {
        const auto gpu = std::ranges::find(gpus, use.device, &GPUAccess::device);
        if (gpu == gpus.end() || gpu->state != State::leftAlone || gpu->processes)
            continue;
        const std::string process = root + "/proc/" + std::to_string(use.use.pid);
        if (access(process.c_str(), F_OK) == 0)
            uses.push_back({use.device, {.pid = use.use.pid, .bytes = use.use.bytes}});
    }
    return uses;
}

std::vector<GPUUse> GPUClients::told()
{
    System &system = *m_system;
    const Turn turn(system.busy);
    if (!turn)
        return {};
    const MutexLock lock(system.mutex);
    const std::vector<GPUAccess> gpus = system.handOver->ask(system.clock());
    std::vector<GPUUse> uses = system.kept(gpus);
    std::set<std::string> addresses;
    system.open.clear();
    for (const GPUAccess &gpu : gpus) {
        if (hasFiles(gpu) && isAwake(gpu)) {
            system.open.emplace(gpu.address, gpu);
            addresses.insert(gpu.address);
        }
        if (!gpu.processes || !system.seesHost)
            continue;
        for (const GPUProcessUse &process : *gpu.processes)
            uses.push_back({gpu.device, process});
    }
    if (!addresses.empty()) {
        for (const KfdUse &use : system.kfd.read(addresses, system.clock()))
            uses.push_back({system.open[use.address].device,
                            {.pid = use.pid, .bytes = use.bytes, .hidesLoad = true}});
    }
    return mergedUses(std::move(uses));
}

std::vector<GPUUse> GPUClients::System::readClients(const std::vector<std::int32_t> &pids,
                                                    double now)
{
    std::set<std::string> nodes;
    for (const auto &[address, gpu] : open) {
        for (std::string &name : namesInFolder(gpu.folder + "/drm"))
            nodes.insert(std::move(name));
    }
    if (nodes.empty())
        return {};
    std::vector<GPUUse> uses;
    std::set<std::pair<std::string, std::string>> counted;
    for (const std::int32_t pid : pids) {
        std::map<std::string, ClientSum> sums; // By address.
        for (const DrmClient &client : files.clientsOf(pid, nodes, now)) {
            const auto gpu = open.find(client.address);
            // One with several descriptors, or inherited by a child, counts once.
            if (gpu == open.end() || !counted.emplace(client.address, client.id).second)
                continue;
            ClientSum &sum = sums[client.address];
            if (const auto bytes = drmClientBytes(client, gpu->second.integrated))
                sum.bytes = sum.bytes.value_or(0) + *bytes;
            sum.shares.add(loads.add(client, now));
        }
        for (const auto &[address, sum] : sums)
            uses.push_back(
                {open.at(address).device,
                 {.pid = pid, .bytes = sum.bytes, .busyFraction = sum.shares.busiest()}});
    }
    files.forgetOld(now);
    loads.forgetOld(now);
    return uses;
}

std::vector<GPUUse> GPUClients::used(std::vector<GPUUse> told,
                                     const std::vector<std::int32_t> &pids)
{
    System &system = *m_system;
    const Turn turn(system.busy);
    if (!turn)
        return told;
    const MutexLock lock(system.mutex);
    const double now = system.clock();
    std::ranges::move(system.readClients(pids, now), std::back_inserter(told));
    std::vector<GPUUse> uses = mergedUses(std::move(told));

    std::map<std::string, std::uint64_t> held;
    for (const GPUUse &use : uses) {
        if (use.use.bytes)
            held[use.device] += *use.use.bytes;
    }
    system.handOver->setHeldBytes(std::move(held), now);
    system.last = uses;
    return uses;
}

bool GPUClients::readsFiles() const
{
    const auto gpus = m_system->handOver->ask(m_system->clock());
    return std::ranges::any_of(gpus, hasFiles);
}

} // namespace corvane
