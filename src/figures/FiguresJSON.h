#pragma once

#include "figures/Figures.h"

#include <QByteArray>
#include <QJsonObject>

namespace corvane {

/// Version of the objects that `figuresObject` makes, as `docs/figures.schema.json` describes them.
/// It changes when a key is taken away or gets another meaning, not when one is added.
inline constexpr int figuresVersion = 1;

/// The figures as a JSON object in base units: bytes, watts, ratios of 0 to 1, degrees Celsius,
/// hertz, seconds. An unknown figure has no key. With a survey the object also has its processes
/// and workloads.
QJsonObject figuresObject(const Figures &figures,
                          const std::optional<SurveyFigures> &survey = std::nullopt);

/// What a bar's custom module shows of a sample: the label's numbers as "text", the same in words
/// as "tooltip", the memory's pressure as "class" and "alt", its use as "percentage".
QJsonObject barObject(const SystemMetrics &sample);

/// The object in one line, which ends with a newline.
QByteArray inOneLine(const QJsonObject &object);

} // namespace corvane
