#include "cards/InfoTexts.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// One topic with its wording for each system.
struct Wordings {
    QString title = {};
    QString mac = {};
    QString linuxDesktop = {};
};

Wordings memoryWordings()
{
    return {
        u"Unified Memory"_s,
        u"Single physical RAM pool shared between CPU and GPU on Apple Silicon — there is no "
        "separate VRAM.\n\n"
        "**App** active memory of running processes.  **Wired** kernel memory, never paged out.  "
        "**Compressed** pages compressed in place to avoid hitting swap.  **Cached** pages the OS "
        "keeps around for performance but can drop on demand.\n\n"
        "**Swap** memory offloaded to disk — if it grows, you're past the comfortable limit.  "
        "**Pressure** Normal / Warning / Critical (read from "
        "`kern.memorystatus_vm_pressure_level`)."_s,
        u"Physical RAM, read from `/proc/meminfo`. An integrated GPU takes its share from it; the "
        "VRAM of a graphics card is separate and not counted here.\n\n"
        "**App** active memory of running processes, with the next two.  **Wired** kernel memory, "
        "GPU buffers, huge and locked pages: never paged out.  **Compressed** what zram and zswap "
        "hold.  **Cached** files and kernel caches that can be dropped on demand.\n\n"
        "Used is all but free and cached. `free` and most desktop monitors go by *available* "
        "memory instead, an estimate, and may be some percent off.\n\n"
        "**Swap** memory moved out of RAM — if it grows, you're past the comfortable limit.  "
        "**Pressure** Normal / Warning / Critical: tasks stalled for 10% of the last 10 s (`some`, "
        "`full` in `/proc/pressure/memory`); without that file, less than 10% or 5% available."_s};
}

Wordings powerWordings()
{
    return {
        u"Package Power"_s,
        u"Sum of **CPU + GPU + ANE** in watts. Computed as `ΔEnergy / Δtime` from the **IOReport "
        "Energy Model** channels (`CPU Energy`, `GPU Energy`, `ANE`).\n\n"
        "Each channel reports in its own unit — on M5 Max the CPU channel is mJ while GPU is nJ; "
        "we convert per channel via `IOReportChannelGetUnitLabel`.\n\n"
        "**Excludes** DRAM, memory controller, display backlight and I/O rails — compute only. "
        "The `peak` in the header is the maximum within the currently visible window."_s,
        u"Sum of **CPU + GPU + ANE** in watts. Computed as `ΔEnergy / Δtime` from what the kernel "
        "counts. **CPU** is the whole package, an integrated GPU included: RAPL "
        "(`/sys/class/powercap`) or an APU's socket power (`hwmon`). **GPU** is graphics cards "
        "alone: NVIDIA's driver library or `hwmon`. **ANE** stays at 0: no driver counts the "
        "energy of an NPU.\n\n"
        "**No CPU watts?** Since 5.10 the kernel lets only root read `energy_uj`, because its "
        "fine steps can betray secrets to other programs. An administrator who accepts that opens "
        "it until the next start with `chmod a+r intel-rapl:*/energy_uj` in that folder, for good "
        "with a udev rule. What cannot be read counts as 0.\n\n"
        "**Excludes** DRAM, display, disks and losses of the power supply, so a meter at the wall "
        "shows more. The `peak` in the header is the maximum within the currently visible "
        "window."_s};
}

Wordings cpuWordings()
{
    return {
        u"CPU — Utilization"_s,
        u"**Active residency %**: fraction of the last second the CPU clusters spent in any "
        "non-idle P-state.\n\n"
        "⚠️ **This is not throughput.** A cluster can sit 100% active in P1 (its lowest active "
        "state) while drawing milliwatts. The real load is told by the **watts** and the **MHz** "
        "below, not by the percentage.\n\n"
        "**MHz** is the residency-weighted average active frequency across E-cores and P-cores. "
        "The frequency table is read from the IORegistry (`pmgr/voltage-states*-sram`)."_s,
        u"**Active %**: fraction of the last second that the cores were not idle, the mean of all "
        "of them, from `/proc/stat`. `top` shows the same in its summary, but counts 100% for "
        "each core in its process list.\n\n"
        "⚠️ **This is not throughput.** A core can sit 100% active at its lowest frequency "
        "while "
        "drawing milliwatts. The real load is told by the **watts** and the **MHz** below, not by "
        "the percentage.\n\n"
        "**MHz** is the average frequency of the active time across all cores, from `cpufreq` "
        "(`time_in_state`, else `scaling_cur_freq`), else from `/proc/cpuinfo`, which is constant "
        "in most virtual machines. The temperature comes from `hwmon`; for the watts see the Power "
        "card."_s};
}

Wordings gpuWordings()
{
    return {
        u"GPU — Utilization"_s,
        u"**Active residency %**: fraction of time the GPU spent in any non-idle P-state. Same "
        "caveat as the CPU — the GPU can show 80% while sitting in P1 with very little real "
        "load.\n\n"
        "**Dominant state** (P1, P2…) is the P-state the GPU spent the most time in this sample. "
        "P1 is the minimum; higher numbers mean higher voltage/frequency/load.\n\n"
        "For real load look at the **watts** on the Power card. Idle is typically 0.05–0.5 W; "
        "under heavy MLX/Metal it can climb past 30 W on M-Max chips."_s,
        u"**Active %**: fraction of time the GPU was busy, from NVIDIA's driver library, "
        "`gpu_busy_percent` (AMD) or the time outside its sleep state RC6 (Intel, an upper bound). "
        "Same caveat as the CPU — the GPU can show 80% at its lowest clock with very little real "
        "load.\n\n"
        "**Dominant state** is the state the GPU spent the most time in: its frequency, or "
        "NVIDIA's P-state, where P0 is the **fastest** and P8 and above mean rest.\n\n"
        "For real load look at the **watts** on the Power card; those of an integrated GPU are "
        "part of the CPU's.\n\n"
        "A graphics card that sleeps is left asleep, and one at rest is left alone so that it can "
        "fall asleep: both show nothing here. While a card is read, an integrated GPU is not."_s};
}

Wordings aneWordings()
{
    return {
        u"Neural Engine — Power-derived load"_s,
        u"The **Apple Neural Engine** runs Core ML models and int8 convolutions with very high "
        "efficiency. It powers dictation, Vision, Face ID, and on-device ML in many apps.\n\n"
        "macOS **does not expose ANE residency or active frequency** — there is no `ANE Stats` "
        "group in IOReport, unlike CPU/GPU. Every monitor in the wild (asitop, macmon, iStat-style "
        "tools) hits the same wall.\n\n"
        "What we *can* read is **ANE power** from the IOReport `Energy Model` channel (`ANE` on "
        "M1–M4; `ANE0`/`ANE1` per die on Ultra). The percentage shown is `aneWatts / aneMaxW` for "
        "the detected chip — a load proxy, not residency. For M5 Max the ceiling is ≈10 W (not "
        "documented by Apple; calibrate in `ChipInfo` if you saturate the ANE and see higher).\n\n"
        "MLX inference typically runs on GPU/Metal, so the ANE will stay idle even under heavy "
        "load."_s,
        u"The **Neural Engine** is the part of a chip that runs small models with very high "
        "efficiency; PC processors call theirs an NPU. Linux drives those of Intel (`intel_vpu`) "
        "and AMD (`amdxdna`).\n\n"
        "The percentage shown is power divided by the chip's ceiling — a load proxy. No Linux "
        "driver **counts the energy of an NPU**, so power and load read 0 here: *not measured*, "
        "which is not the same as idle.\n\n"
        "There is nothing that an administrator could open. Intel's driver does count busy time "
        "(`npu_busy_time_us`), but busy time is not power.\n\n"
        "Local inference typically runs on the GPU or the CPU, so an NPU will stay idle even under "
        "heavy load."_s};
}

Wordings workloadsWordings()
{
    return {
        u"AI Workloads"_s,
        u"Processes that look like local AI inference, detected by **process name + argv pattern "
        "matching**.\n\n"
        "Currently recognised: **Ollama, MLX, llama.cpp, LM Studio, KoboldCpp, whisper.cpp, vLLM, "
        "ComfyUI, SD WebUI, HuggingFace Transformers**, plus generic torch jobs that reference a "
        "`.gguf` / `.safetensors` / `.ckpt` model file.\n\n"
        "The model name is parsed from common flags (`--model`, `-m`, `--ckpt`, `ollama run X`) "
        "and from any model-file path on the command line. When the framework loads the model via "
        "IPC (LM Studio, some Ollama setups) the model field will say \"model unknown\".\n\n"
        "Only processes the current user can inspect are visible — sampled every 3 s."_s,
        u"Processes that look like local AI inference, detected by **process name + argv pattern "
        "matching** (`/proc/<pid>/cmdline`).\n\n"
        "Currently recognised: **Ollama, MLX, llama.cpp, LM Studio, KoboldCpp, whisper.cpp, vLLM, "
        "ComfyUI, SD WebUI, HuggingFace Transformers**, plus generic torch jobs that reference a "
        "`.gguf` / `.safetensors` / `.ckpt` model file.\n\n"
        "The model name is parsed from common flags (`--model`, `-m`, `--ckpt`, `ollama run X`) "
        "and from any model-file path on the command line. When the framework loads the model via "
        "IPC (LM Studio, some Ollama setups) the model field will say \"model unknown\".\n\n"
        "The memory is the process's own: weights in a graphics card's VRAM and model files mapped "
        "from disk are not in it. Processes of other users are visible unless `/proc` is mounted "
        "with `hidepid` — sampled every 3 s."_s};
}

Wordings processesWordings()
{
    return {
        u"Top Processes"_s,
        u"Processes ranked by **phys_footprint**: the same metric Activity Monitor uses for its "
        "\"Memory\" column (sum of resident + compressed physical pages attributable to the "
        "process).\n\n"
        "Sampled every 3 s via `proc_listpids` + `proc_pid_rusage(RUSAGE_INFO_V4)`.\n\n"
        "Processes from **other users or root** may not appear because the app runs without "
        "elevated privileges; full visibility would require a privileged helper or debug "
        "entitlements."_s,
        u"Processes ranked by **RssAnon + VmSwap**: memory that belongs to the process alone, in "
        "RAM or swapped out. `top` also counts shared libraries and mapped files (`RES`), so its "
        "numbers are larger; the desktop's own monitors leave those out as well, but often the "
        "swapped part too.\n\n"
        "Sampled every 3 s via `/proc/<pid>/statm`, and `status` while swap is in use.\n\n"
        "Processes from **other users or root** are listed too, unless `/proc` is mounted with "
        "`hidepid`; an administrator can then let a group see them with the mount option "
        "`gid=`."_s};
}

Wordings wordings(InfoTopic topic)
{
    switch (topic) {
    case InfoTopic::memory:
        return memoryWordings();
    case InfoTopic::power:
        return powerWordings();
    case InfoTopic::cpu:
        return cpuWordings();
    case InfoTopic::gpu:
        return gpuWordings();
    case InfoTopic::ane:
        return aneWordings();
    case InfoTopic::workloads:
        return workloadsWordings();
    case InfoTopic::processes:
        break;
    }
    return processesWordings();
}

} // namespace

InfoText infoText(InfoTopic topic, HostSystem system)
{
    const Wordings both = wordings(topic);
    return {both.title, system == HostSystem::mac ? both.mac : both.linuxDesktop};
}

} // namespace corvane
