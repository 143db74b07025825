#include "lists/FrameworkColor.h"

#include "ui/Theme.h"

#include <utility>

namespace corvane {

namespace {

constexpr std::pair<AIFramework, QColor> colors[] = {
    {AIFramework::ollama, Theme::ollama},       {AIFramework::mlx, Theme::mlx},
    {AIFramework::llamaCpp, Theme::llamaCpp},   {AIFramework::lmStudio, Theme::lmStudio},
    {AIFramework::koboldCpp, Theme::koboldCpp}, {AIFramework::whisperCpp, Theme::whisperCpp},
    {AIFramework::vllm, Theme::vllm},           {AIFramework::comfyUI, Theme::comfyUI},
    {AIFramework::sdWebUI, Theme::sdWebUI},     {AIFramework::transformers, Theme::transformers},
};

} // namespace

QColor frameworkColor(AIFramework framework)
{
    for (const auto &[known, color] : colors) {
        if (known == framework)
            return color;
    }
    return Theme::textSecondary;
}

} // namespace corvane
