#pragma once

#include <cstdint>

namespace corvane {

/// Flags of NSWindowCollectionBehavior, from AppKit's NSWindow.h.
namespace CollectionBehavior {

inline constexpr std::uint64_t fullScreenPrimary = 1 << 7;
inline constexpr std::uint64_t fullScreenAuxiliary = 1 << 8;

/// The flags of a window that may fill a screen of its own; those of other matters are kept.
constexpr std::uint64_t allowingFullScreen(std::uint64_t flags)
{
    return (flags | fullScreenPrimary) & ~fullScreenAuxiliary;
}

} // namespace CollectionBehavior

} // namespace corvane
