#pragma once

#include "records/SystemMetrics.h"

#include <cstdint>
#include <optional>

namespace corvane {

/// How much memory another model would find.
struct ModelRoom {
    /// Where the model would lie.
    enum class Place : std::uint8_t {
        card,    ///< In the memory of the graphics card `gpu`.
        memory,  ///< In the machine's memory, with what is free of an integrated GPU's own.
        unified, ///< In the part of a Mac's memory that its GPU may use.
    };

    Place place = Place::memory;
    int gpu = 0;                  ///< Number of the graphics card, in the order of the views.
    std::uint64_t bytes = 0;      ///< Room for the model alone; 0: none.
    std::uint64_t free = 0;       ///< The same with what context and system need.
    std::uint64_t total = 0;      ///< Bytes of the card; that the GPU may use; of the machine.
    std::uint64_t used = 0;       ///< Bytes in use of `total`.
    std::uint64_t ownFree = 0;    ///< Of `free`: in the part that an integrated GPU has for itself.
    bool isUnderPressure = false; ///< The system is short of memory: the sizes mislead.

    friend bool operator==(const ModelRoom &, const ModelRoom &) = default;
};

/// What is left to the context of a model and to the system.
inline constexpr std::uint64_t leftToContext = std::uint64_t(1) << 30;

/// The room of a machine in this sample: on its graphics cards the most that one of them has, else
/// in its memory. Absent where the sample does not tell it: a card sleeps, or its driver tells only
/// what this user's processes hold; before the first sample. Pure.
std::optional<ModelRoom> modelRoom(const SystemMetrics &sample);

} // namespace corvane
