#include "ui/AccessibleValue.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace corvane {

namespace {

class AccessibleValueInterface : public QAccessibleWidget {
public:
    AccessibleValueInterface(QWidget *widget, const AccessibleValue *spoken)
        : QAccessibleWidget(widget, QAccessible::Chart),
          m_spoken(spoken)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        // Linux's accessibility bus reads out descriptions, the Mac's reads out values.
        if (kind == QAccessible::Value || kind == QAccessible::Description)
            return m_spoken->accessibleValue();
        return QAccessibleWidget::text(kind);
    }

private:
    const AccessibleValue *m_spoken; ///< The widget itself; Qt drops this interface with it.
};

QAccessibleInterface *accessibleInterface(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    const auto *spoken = dynamic_cast<const AccessibleValue *>(object);
    return widget && spoken ? new AccessibleValueInterface(widget, spoken) : nullptr;
}

/// Knows whether a screen reader listens.
class Listeners : public QAccessible::ActivationObserver {
public:
    static bool any()
    {
        static Listeners listeners;
        return listeners.m_any;
    }

private:
    Listeners() { QAccessible::installActivationObserver(this); }
    ~Listeners() override { QAccessible::removeActivationObserver(this); }
    void accessibilityActiveChanged(bool active) override { m_any = active; }

    bool m_any = QAccessible::isActive();
};

} // namespace

AccessibleValue::AccessibleValue()
{
    QAccessible::installFactory(accessibleInterface); // Once: Qt drops repetitions.
}

void AccessibleValue::announceChange(QWidget *self)
{
    if (!Listeners::any())
        return;
    QString text = accessibleValue();
    if (text == m_announced)
        return;
    m_announced = std::move(text);
    QAccessibleValueChangeEvent changedValue(self, m_announced);
    QAccessible::updateAccessibility(&changedValue);
    QAccessibleEvent changedDescription(self, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changedDescription);
}

} // namespace corvane
