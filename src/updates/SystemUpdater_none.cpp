#include "updates/SystemUpdater.h"

namespace corvane {

namespace {

/// For a program that was built without an updater.
class NoUpdater : public SystemUpdater {
public:
    bool isOffered() const override { return false; }
    bool automaticallyChecks() const override { return false; }
    void setAutomaticallyChecks(bool) override { }
    bool canCheck() const override { return false; }
    void check() override { }
};

} // namespace

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<NoUpdater>();
}

} // namespace corvane
