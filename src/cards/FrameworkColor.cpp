#include "cards/FrameworkColor.h"

#include "ui/Theme.h"

#include <utility>

namespace corvane {

namespace {

constexpr std::pair<AIFramework, QColor> colors[] = {
    {AIFramework::ollama, Theme::srgb(0.36F, 0.78F, 0.95F)},
    {AIFramework::mlx, Theme::srgb(1.0F, 0.62F, 0.78F)},
    {AIFramework::llamaCpp, Theme::srgb(0.95F, 0.65F, 0.30F)},
    {AIFramework::lmStudio, Theme::srgb(0.55F, 0.85F, 0.50F)},
    {AIFramework::koboldCpp, Theme::srgb(0.85F, 0.55F, 0.95F)},
    {AIFramework::whisperCpp, Theme::srgb(0.75F, 0.78F, 0.85F)},
    {AIFramework::vllm, Theme::srgb(1.0F, 0.45F, 0.45F)},
    {AIFramework::comfyUI, Theme::srgb(0.50F, 0.60F, 1.0F)},
    {AIFramework::sdWebUI, Theme::srgb(1.0F, 0.85F, 0.40F)},
    {AIFramework::transformers, Theme::srgb(0.95F, 0.55F, 0.85F)},
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
