#pragma once

#include "updates/SystemUpdater.h"

namespace corvane::test {

/// An updater whose state a test sets: a check runs until the test ends it.
class ScriptedUpdater : public SystemUpdater {
public:
    bool isOffered() const override { return offered; }
    bool automaticallyChecks() const override { return automatic; }
    void setAutomaticallyChecks(bool on) override { automatic = on; }
    bool canCheck() const override { return !isChecking; }
    void check() override
    {
        ++checks;
        setChecking(true);
    }
    void refresh() override { ++refreshes; }
    std::optional<QString> finding() const override { return sentence; }
    std::optional<QString> availableVersion() const override { return version; }

    void setChecking(bool on)
    {
        isChecking = on;
        emit canCheckChanged();
    }

    void find(const QString &newSentence, const std::optional<QString> &newVersion = {})
    {
        sentence = newSentence;
        version = newVersion;
        emit findingChanged();
    }

    bool offered = true;
    bool automatic = true;
    bool isChecking = false;
    int checks = 0;
    int refreshes = 0;
    std::optional<QString> sentence;
    std::optional<QString> version;
};

} // namespace corvane::test
