#pragma once

#include <QString>

#include <array>

namespace corvane {

/// The kinds of local inference program that are distinguished. Colours belong to the views.
enum class AIFramework {
    ollama,
    mlx,
    llamaCpp,
    lmStudio,
    koboldCpp,
    whisperCpp,
    vllm,
    comfyUI,
    sdWebUI,
    transformers,
    generic,
    // Known to the second rules alone. They look like `generic`.
    dockerModelRunner,
    ramaLama,
    localAI,
    sglang,
    tgi,
    tabbyAPI,
    textGenerationWebUI,
    lemonade,
    fastFlowLM,
    foundryLocal,
    mistralRs,
    tensorRTLLM,
    mlcLLM,
    exo,
    llamafile,
    stableDiffusionCpp,
    invokeAI,
    gpt4All,
    whisper,
};

/// Those that the first rules tell apart, in declaration order.
inline constexpr std::array allAIFrameworks{
    AIFramework::ollama,    AIFramework::mlx,          AIFramework::llamaCpp, AIFramework::lmStudio,
    AIFramework::koboldCpp, AIFramework::whisperCpp,   AIFramework::vllm,     AIFramework::comfyUI,
    AIFramework::sdWebUI,   AIFramework::transformers, AIFramework::generic};

/// Those that only the second rules know, in declaration order.
inline constexpr std::array furtherAIFrameworks{AIFramework::dockerModelRunner,
                                                AIFramework::ramaLama,
                                                AIFramework::localAI,
                                                AIFramework::sglang,
                                                AIFramework::tgi,
                                                AIFramework::tabbyAPI,
                                                AIFramework::textGenerationWebUI,
                                                AIFramework::lemonade,
                                                AIFramework::fastFlowLM,
                                                AIFramework::foundryLocal,
                                                AIFramework::mistralRs,
                                                AIFramework::tensorRTLLM,
                                                AIFramework::mlcLLM,
                                                AIFramework::exo,
                                                AIFramework::llamafile,
                                                AIFramework::stableDiffusionCpp,
                                                AIFramework::invokeAI,
                                                AIFramework::gpt4All,
                                                AIFramework::whisper};

/// The case's own name, such as "llamaCpp".
QString rawValue(AIFramework framework);

/// What users call it, such as "llama.cpp".
QString displayName(AIFramework framework);

/// Name of its icon in `resources/icons/`.
QString symbol(AIFramework framework);

} // namespace corvane
