#include "app/SoakMachine.h"

#include "support/SteppedClock.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace corvane::test {

namespace {

namespace fs = std::filesystem;

const std::string package = "sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj";
constexpr double energyRange = 65'532'610'987; ///< Its max_energy_range_uj.
const std::string card =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";
const std::string cpuSensor = "sys/devices/virtual/hwmon/hwmon0";
constexpr int mostFreeKiB = 1'034'220; ///< Free memory in the file that its memory is copied from.
constexpr std::array processes{"python3", "ollama", "llama-server", "firefox", "postgres", "clang"};
constexpr int steadyProcesses = 5; ///< The number that rest() leaves.

} // namespace

SoakMachine::SoakMachine(unsigned int seed)
    : m_tree("amd-desktop"),
      m_random(seed),
      m_busy(cpus, 1000),
      m_idle(cpus, 100'000)
{
    const MachineTree memory("laptop-hybrid-zram");
    fs::copy(memory.root() + "/proc", root() + "/proc",
             fs::copy_options::recursive | fs::copy_options::skip_existing);
    std::ifstream file(root() + "/proc/meminfo");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("MemFree:"))
            m_memory += line + '\n';
    }
    rest();
}

void SoakMachine::live()
{
    begin();
    if (happens(150)) {
        ++m_events.sleeps;
        pass(random(60, 40'000), 0.5);
    }
    if (happens(150)) {
        const int seconds = random(-90'000, 90'000);
        ++(seconds < 0 ? m_events.jumpsBack : m_events.jumpsForward);
        m_now += seconds;
    }
    pass(1, random(2, static_cast<int>(mostCPUWatts)));
    work();
    if (happens(50)) {
        ++m_events.cores;
        plugCore();
    }
    if (happens(200)) {
        ++m_events.cards;
        plugFolder(card);
    }
    if (happens(200)) {
        ++m_events.sensors;
        plugFolder(cpuSensor);
    }
    changeProcesses();
    writeTimes();
}

void SoakMachine::rest()
{
    begin();
    while (!m_offline.empty())
        m_offline.erase(m_offline.begin());
    while (!m_unplugged.empty())
        plugFolder(std::string(*m_unplugged.begin()));
    while (m_pids.size() > steadyProcesses)
        removeProcess(*m_pids.rbegin());
    for (int pid = 100; m_pids.size() < steadyProcesses; ++pid)
        addProcess(pid);
    pass(1, 20);
    work();
    writeTimes();
}

/// Begins a second: the last one has been measured.
void SoakMachine::begin()
{
    m_seconds = 0;
    m_joules = 0;
    m_restarted = false;
}

void SoakMachine::pass(double seconds, double watts)
{
    SteppedClock::pass(seconds);
    m_now += seconds;
    m_seconds += seconds;
    m_joules += watts * seconds;
    m_restarted = m_restarted || m_microjoules + watts * seconds * 1e6 >= energyRange;
    m_microjoules = std::fmod(m_microjoules + watts * seconds * 1e6, energyRange);
    m_tree.write(package, std::to_string(static_cast<std::uint64_t>(m_microjoules)) + '\n');
}

/// Writes the counters and readings after a second of work.
void SoakMachine::work()
{
    for (std::size_t cpu = 0; cpu < cpus; ++cpu) {
        if (m_offline.contains(static_cast<int>(cpu)))
            continue;
        const int busy = random(0, 100);
        m_busy[cpu] += static_cast<std::uint64_t>(busy);
        m_idle[cpu] += static_cast<std::uint64_t>(100 - busy);
    }
    if (!m_unplugged.contains(card)) {
        m_tree.write(card + "/gpu_busy_percent", std::to_string(random(0, 100)) + '\n');
        m_tree.write(card + "/hwmon/hwmon1/power1_average",
                     std::to_string(random(5, static_cast<int>(mostGPUWatts))) + "000000\n");
        m_tree.write(card + "/hwmon/hwmon1/temp1_input",
                     std::to_string(random(30, static_cast<int>(mostDegrees))) + "000\n");
    }
    m_freeKiB = static_cast<std::uint64_t>(random(0, mostFreeKiB));
    m_tree.write("proc/meminfo", m_memory + "MemFree: " + std::to_string(m_freeKiB) + " kB\n");
    if (!m_unplugged.contains(cpuSensor))
        m_tree.write(cpuSensor + "/temp1_input",
                     std::to_string(random(30, static_cast<int>(mostDegrees))) + "000\n");
}

/// The first core never goes offline.
void SoakMachine::plugCore()
{
    const int cpu = random(1, cpus - 1);
    if (m_offline.erase(cpu) == 0)
        m_offline.insert(cpu);
}

/// Moves the folder out of the tree, or back; links to it break meanwhile.
void SoakMachine::plugFolder(const std::string &folder)
{
    const std::string here = root() + '/' + folder;
    const std::string away = root() + "/away-" + std::to_string(folder.size());
    if (m_unplugged.erase(folder) != 0) {
        fs::rename(away, here);
    } else {
        fs::rename(here, away);
        m_unplugged.insert(folder);
    }
}

void SoakMachine::changeProcesses()
{
    constexpr std::size_t most = 60;
    if (happens(2) && m_pids.size() < most)
        addProcess(random(100, 30'000));
    if (happens(2) && !m_pids.empty())
        removeProcess(*std::next(m_pids.begin(), random(0, static_cast<int>(m_pids.size()) - 1)));
}

void SoakMachine::addProcess(int pid)
{
    const std::string name = processes[static_cast<std::size_t>(pid) % processes.size()];
    const std::string folder = "proc/" + std::to_string(pid);
    const std::string pages = std::to_string(random(1000, 2'000'000));
    m_tree.write(folder + "/statm", pages + ' ' + pages + " 500 1 0 400 0\n");
    m_tree.write(folder + "/comm", name + '\n');
    std::string stat = std::to_string(pid) + " (" + name + ") S";
    for (int field = 4; field < 22; ++field)
        stat += " 0";
    m_tree.write(folder + "/stat", stat + ' ' + std::to_string(++m_starts) + " 0 0\n");
    std::string arguments = "/usr/bin/" + name;
    arguments += '\0';
    arguments += "--model";
    arguments += '\0';
    arguments += "/models/mixtral-" + std::to_string(pid % 9) + "b.gguf";
    arguments += '\0';
    m_tree.write(folder + "/cmdline", arguments);
    m_pids.insert(pid);
}

void SoakMachine::removeProcess(int pid)
{
    m_tree.remove("proc/" + std::to_string(pid));
    m_pids.erase(pid);
}

void SoakMachine::writeTimes() const
{
    std::string text = "cpu  1 0 0 1 0 0 0 0 0 0\n";
    for (std::size_t cpu = 0; cpu < cpus; ++cpu) {
        if (!m_offline.contains(static_cast<int>(cpu)))
            text += "cpu" + std::to_string(cpu) + ' ' + std::to_string(m_busy[cpu]) + " 0 0 "
                + std::to_string(m_idle[cpu]) + " 0 0 0 0 0 0\n";
    }
    m_tree.write("proc/stat", text);
}

} // namespace corvane::test
