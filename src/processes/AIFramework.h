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
    generic
};

/// All cases in declaration order.
inline constexpr std::array allAIFrameworks{
    AIFramework::ollama,    AIFramework::mlx,          AIFramework::llamaCpp, AIFramework::lmStudio,
    AIFramework::koboldCpp, AIFramework::whisperCpp,   AIFramework::vllm,     AIFramework::comfyUI,
    AIFramework::sdWebUI,   AIFramework::transformers, AIFramework::generic};

/// The case's own name, such as "llamaCpp".
QString rawValue(AIFramework framework);

/// What users call it, such as "llama.cpp".
QString displayName(AIFramework framework);

/// Name of its icon in `resources/icons/`.
QString symbol(AIFramework framework);

} // namespace corvane
