#pragma once

#include <QString>

class QWidget;

namespace corvane {

/// What a painted widget says to a screen reader beside its accessible name: a widget that is also
/// a `SpokenValue` has this text as its value and description, and the role of a chart. Main
/// thread.
class SpokenValue {
public:
    SpokenValue();
    virtual ~SpokenValue() = default;

    SpokenValue(const SpokenValue &) = delete;
    SpokenValue &operator=(const SpokenValue &) = delete;

    virtual QString spokenValue() const = 0;

protected:
    /// Tells a listening screen reader if the text has changed; does nothing while none listens.
    void announceChange(QWidget *self);

private:
    QString m_announced;
};

} // namespace corvane
