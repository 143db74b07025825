#include "gallery/ScriptedWorkloads.h"

#include "gallery/ScriptedSamples.h"

#include <array>

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

struct Row {
    AIFramework framework;
    const char *process;
    const char *model; ///< Null: unknown.
    double memory;     ///< GiB.
    double gpuMemory;  ///< The same.
    const char *quantisation;
    double load;   ///< Of the GPU, 0…1; negative: not known.
    int idle = -1; ///< Minutes; negative: not idle.
};

constexpr auto rows = std::to_array<Row>({
    {AIFramework::ollama, "ollama", "qwen3:8b", 0.62, 6.31, "Q4_K_M", 0.71},
    {AIFramework::llamaCpp, "llama-server", "Qwen2.5-14B-Instruct-Q4_K_M.gguf", 1.24, 5.2, "Q4_K_M",
     0, 12},
    {AIFramework::whisperCpp, "whisper-server", "ggml-large-v3-turbo-q5_0.bin", 0.29, 1.02, nullptr,
     0.02},
    {AIFramework::vllm, "VLLM::EngineCore", "Qwen/Qwen3-4B-AWQ", 3.1, 2.6, "AWQ", 0.12},
    {AIFramework::lmStudio, "node", nullptr, 0.9, 0.8, nullptr, -1},
    {AIFramework::comfyUI, "python3", "flux1-dev.safetensors", 4.06, 1.4, nullptr, 0, 180},
    {AIFramework::dockerModelRunner, "com.docker.llama-server", "SmolLM2 360M", 0.31, 0.4, "Q8_0",
     0.01},
    {AIFramework::mlx, "python3.12", "mlx-community/Llama-3.2-3B-Instruct-4bit", 2.2, 0.3, "4-bit",
     -1},
    {AIFramework::koboldCpp, "koboldcpp", "mistral-7b.gguf", 0.7, 0.3, "Q5_K_M", -1},
    {AIFramework::sglang, "sglang::scheduler", "Qwen/Qwen3-1.7B", 1.1, 0.2, nullptr, 0, 3},
    {AIFramework::generic, "python3", "model.safetensors", 0.4, 0.2, nullptr, -1},
    {AIFramework::transformers, "python3", "sentence-transformers/all-MiniLM-L6-v2", 0.7, 0.2,
     nullptr, -1},
});

AIWorkload workloadOf(const Row &row, std::int64_t pid, bool tellsGPUMemory)
{
    AIWorkload workload{.id = pid,
                        .pid = pid,
                        .processName = QString::fromLatin1(row.process),
                        .framework = row.framework,
                        .memory = gibibytes(row.memory + (tellsGPUMemory ? 0 : row.gpuMemory))};
    if (row.model)
        workload.model = QString::fromLatin1(row.model);
    if (tellsGPUMemory)
        workload.gpuMemory = gibibytes(row.gpuMemory);
    if (row.quantisation)
        workload.details.quantisation = QString::fromLatin1(row.quantisation);
    if (row.load >= 0)
        workload.gpuFraction = row.load;
    if (row.idle >= 0)
        workload.details.idleSeconds = 60 * row.idle;
    return workload;
}

ScriptedMachine with(ScriptedMachine machine, int count, bool tellsGPUMemory)
{
    machine.workloads.clear();
    for (int i = 0; i < count; ++i)
        machine.workloads.push_back(
            workloadOf(rows[static_cast<std::size_t>(i)], 4711 + 1009 * i, tellsGPUMemory));
    return machine;
}

} // namespace

ScriptedMachine busyMac(int workloads)
{
    SystemMetrics sample = scriptedCurrent();
    sample.memory.gpuUsed = gibibytes(24);
    return with({.history = {sample}}, workloads, false);
}

ScriptedMachine busyCard(int workloads)
{
    ScriptedMachine machine = with(oneCardMinute(), workloads, true);
    machine.history.back().chip->gpus.front().memoryUsed = gibibytes(20.3);
    machine.holders.front().knownBytes = gibibytes(18.93);
    return machine;
}

ScriptedMachine busyAPU(int workloads)
{
    return with(apuMinute(), workloads, true);
}

} // namespace corvane::test
