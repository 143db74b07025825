#include "app/Activity.h"

namespace corvane {

struct Activity::Token { };

Activity::Activity() = default;

Activity::~Activity() = default;

} // namespace corvane
