#include "models/Quantisation.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// llama.cpp's numbers (`llama_ftype`); those that it has removed are left out.
constexpr std::pair<std::uint32_t, QLatin1StringView> fileTypes[] = {
    {0, "F32"_L1},      {1, "F16"_L1},      {2, "Q4_0"_L1},    {3, "Q4_1"_L1},    {7, "Q8_0"_L1},
    {8, "Q5_0"_L1},     {9, "Q5_1"_L1},     {10, "Q2_K"_L1},   {11, "Q3_K_S"_L1}, {12, "Q3_K_M"_L1},
    {13, "Q3_K_L"_L1},  {14, "Q4_K_S"_L1},  {15, "Q4_K_M"_L1}, {16, "Q5_K_S"_L1}, {17, "Q5_K_M"_L1},
    {18, "Q6_K"_L1},    {19, "IQ2_XXS"_L1}, {20, "IQ2_XS"_L1}, {21, "Q2_K_S"_L1}, {22, "IQ3_XS"_L1},
    {23, "IQ3_XXS"_L1}, {24, "IQ1_S"_L1},   {25, "IQ4_NL"_L1}, {26, "IQ3_S"_L1},  {27, "IQ3_M"_L1},
    {28, "IQ2_S"_L1},   {29, "IQ2_M"_L1},   {30, "IQ4_XS"_L1}, {31, "IQ1_M"_L1},  {32, "BF16"_L1},
    {36, "TQ1_0"_L1},   {37, "TQ2_0"_L1},   {38, "MXFP4"_L1},
};

} // namespace

std::optional<QString> quantisationOfFileType(std::uint32_t fileType)
{
    const auto *const found =
        std::ranges::find(fileTypes, fileType, &std::pair<std::uint32_t, QLatin1StringView>::first);
    if (found == std::end(fileTypes))
        return std::nullopt;
    return found->second;
}

std::optional<QString> quantisationInName(const QString &name)
{
    static const QRegularExpression pattern(
        u"(?:^|[-_.: /])(?:"
        "(?<bits>[2-8])[-_]?bit"
        "|(?<type>(?:UD-)?(?:I?Q[1-8]_(?:K_(?:XL|[SML])|K|[01]|XXS|XS|NL|[SM])|TQ[12]_0"
        "|BF16|FP?16|FP?32|FP8|MXFP[48]|NVFP4|AWQ|GPTQ|INT[48]|W[48]A(?:8|16)|EXL[23]))"
        ")(?=$|[-_.: /])"_s,
        QRegularExpression::CaseInsensitiveOption);
    const auto found = pattern.match(name);
    if (!found.hasMatch())
        return std::nullopt;
    if (const QString bits = found.captured(u"bits"); !bits.isEmpty())
        return bits + u"-bit"_s;
    return found.captured(u"type").toUpper();
}

} // namespace corvane
