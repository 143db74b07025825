#include "cards/FrameworkColor.h"

#include "ui/Theme.h"

namespace corvane {

QColor frameworkColor(AIFramework framework)
{
    switch (framework) {
    case AIFramework::ollama:
        return QColor::fromRgbF(0.36F, 0.78F, 0.95F);
    case AIFramework::mlx:
        return QColor::fromRgbF(1.0F, 0.62F, 0.78F);
    case AIFramework::llamaCpp:
        return QColor::fromRgbF(0.95F, 0.65F, 0.30F);
    case AIFramework::lmStudio:
        return QColor::fromRgbF(0.55F, 0.85F, 0.50F);
    case AIFramework::koboldCpp:
        return QColor::fromRgbF(0.85F, 0.55F, 0.95F);
    case AIFramework::whisperCpp:
        return QColor::fromRgbF(0.75F, 0.78F, 0.85F);
    case AIFramework::vllm:
        return QColor::fromRgbF(1.0F, 0.45F, 0.45F);
    case AIFramework::comfyUI:
        return QColor::fromRgbF(0.50F, 0.60F, 1.0F);
    case AIFramework::sdWebUI:
        return QColor::fromRgbF(1.0F, 0.85F, 0.40F);
    case AIFramework::transformers:
        return QColor::fromRgbF(0.95F, 0.55F, 0.85F);
    case AIFramework::generic:
        break;
    }
    return Theme::textSecondary();
}

} // namespace corvane
