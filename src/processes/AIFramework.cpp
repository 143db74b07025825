#include "processes/AIFramework.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct Description {
    QLatin1StringView rawValue;
    QLatin1StringView displayName;
    QLatin1StringView symbol;
};

/// In declaration order.
constexpr std::array<Description, allAIFrameworks.size() + furtherAIFrameworks.size()> descriptions{
    {
        {"ollama"_L1, "Ollama"_L1, "shippingbox.fill"_L1},
        {"mlx"_L1, "MLX"_L1, "sparkle"_L1},
        {"llamaCpp"_L1, "llama.cpp"_L1, "cpu.fill"_L1},
        {"lmStudio"_L1, "LM Studio"_L1, "studentdesk"_L1},
        {"koboldCpp"_L1, "KoboldCpp"_L1, "books.vertical.fill"_L1},
        {"whisperCpp"_L1, "whisper.cpp"_L1, "waveform"_L1},
        {"vllm"_L1, "vLLM"_L1, "server.rack"_L1},
        {"comfyUI"_L1, "ComfyUI"_L1, "paintbrush.fill"_L1},
        {"sdWebUI"_L1, "SD WebUI"_L1, "photo.artframe"_L1},
        {"transformers"_L1, "Transformers"_L1, "wand.and.stars"_L1},
        {"generic"_L1, "ML Workload"_L1, "brain"_L1},
        {"dockerModelRunner"_L1, "Docker Model Runner"_L1, "shippingbox.fill"_L1},
        {"ramaLama"_L1, "RamaLama"_L1, "shippingbox.fill"_L1},
        {"localAI"_L1, "LocalAI"_L1, "server.rack"_L1},
        {"sglang"_L1, "SGLang"_L1, "server.rack"_L1},
        {"tgi"_L1, "TGI"_L1, "server.rack"_L1},
        {"tabbyAPI"_L1, "TabbyAPI"_L1, "server.rack"_L1},
        {"textGenerationWebUI"_L1, "text-generation-webui"_L1, "books.vertical.fill"_L1},
        {"lemonade"_L1, "Lemonade"_L1, "server.rack"_L1},
        {"fastFlowLM"_L1, "FastFlowLM"_L1, "cpu.fill"_L1},
        {"foundryLocal"_L1, "Foundry Local"_L1, "server.rack"_L1},
        {"mistralRs"_L1, "mistral.rs"_L1, "cpu.fill"_L1},
        {"tensorRTLLM"_L1, "TensorRT-LLM"_L1, "server.rack"_L1},
        {"mlcLLM"_L1, "MLC LLM"_L1, "cpu.fill"_L1},
        {"exo"_L1, "exo"_L1, "server.rack"_L1},
        {"llamafile"_L1, "llamafile"_L1, "cpu.fill"_L1},
        {"stableDiffusionCpp"_L1, "stable-diffusion.cpp"_L1, "paintbrush.fill"_L1},
        {"invokeAI"_L1, "InvokeAI"_L1, "paintbrush.fill"_L1},
        {"gpt4All"_L1, "GPT4All"_L1, "studentdesk"_L1},
        {"whisper"_L1, "Whisper"_L1, "waveform"_L1},
    }};

const Description &description(AIFramework framework)
{
    return descriptions[static_cast<std::size_t>(framework)];
}

} // namespace

QString rawValue(AIFramework framework)
{
    return description(framework).rawValue;
}

QString displayName(AIFramework framework)
{
    return description(framework).displayName;
}

QString symbol(AIFramework framework)
{
    return description(framework).symbol;
}

} // namespace corvane
