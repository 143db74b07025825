#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <string>

namespace corvane::test {

/// Scripts the stand-in for NVIDIA's library, in the lines that its source describes, and counts
/// the calls. One at a time: the library finds the script through the environment.
class StandInNvidia {
public:
    StandInNvidia();
    ~StandInNvidia();

    void script(const QByteArray &lines) const;

    /// Makes a function stall until `letGo`.
    void stall(const QByteArray &function) const;
    void letGo() const;

    /// How often a function was called.
    int calls(const QByteArray &function) const;

private:
    QByteArray path(const char *file) const;

    QTemporaryDir m_folder;
};

} // namespace corvane::test
