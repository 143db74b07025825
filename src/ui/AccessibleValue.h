#pragma once

#include <QString>

class QWidget;

namespace corvane {

/// What a painted widget says to a screen reader beside its accessible name: a widget that is also
/// a `AccessibleValue` has this text as its value and description, and the role of a chart. Main
/// thread.
class AccessibleValue {
public:
    AccessibleValue();
    virtual ~AccessibleValue() = default;

    AccessibleValue(const AccessibleValue &) = delete;
    AccessibleValue &operator=(const AccessibleValue &) = delete;

    virtual QString accessibleValue() const = 0;

protected:
    /// Tells a listening screen reader if the text has changed; does nothing while none listens.
    void announceChange(QWidget *self);

private:
    QString m_announced;
};

} // namespace corvane
