#pragma once

#include "records/MemorySnapshot.h"

#include <QStringList>

#include <utility>

namespace corvane::test {

/// Every field that is known with its name, so that a failed comparison names the one that differs.
inline QStringList described(const MemorySnapshot &memory)
{
    using namespace Qt::StringLiterals;
    const auto field = [](QLatin1StringView name, std::uint64_t value) {
        return name + u' ' + QString::number(value);
    };
    QStringList fields = {field("total"_L1, memory.total),
                          field("used"_L1, memory.used),
                          field("free"_L1, memory.free),
                          field("active"_L1, memory.active),
                          field("wired"_L1, memory.wired),
                          field("compressed"_L1, memory.compressed),
                          field("cached"_L1, memory.cached),
                          field("appMemory"_L1, memory.appMemory),
                          field("swapTotal"_L1, memory.swapTotal),
                          field("swapUsed"_L1, memory.swapUsed),
                          field("pressure"_L1, static_cast<std::uint64_t>(memory.pressure))};
    for (const auto &[name, value] :
         {std::pair("available"_L1, memory.available), std::pair("gpuLimit"_L1, memory.gpuLimit),
          std::pair("gpuUsed"_L1, memory.gpuUsed)}) {
        if (value)
            fields.append(field(name, *value));
    }
    return fields;
}

} // namespace corvane::test
