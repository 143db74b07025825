#pragma once

namespace corvane::simulated {

/// The quality-of-service class that the calling thread runs in.
unsigned threadClass();

} // namespace corvane::simulated
