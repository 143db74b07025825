#include "charts/SpokenValue.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace corvane {

namespace {

class SpokenValueInterface : public QAccessibleWidget {
public:
    SpokenValueInterface(QWidget *widget, const SpokenValue *spoken)
        : QAccessibleWidget(widget, QAccessible::Chart),
          m_spoken(spoken)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        // Linux's accessibility bus reads out descriptions, the Mac's reads out values.
        if (kind == QAccessible::Value || kind == QAccessible::Description)
            return m_spoken->spokenValue();
        return QAccessibleWidget::text(kind);
    }

private:
    const SpokenValue *m_spoken; ///< The widget itself; Qt drops this interface with it.
};

QAccessibleInterface *spokenInterface(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    const auto *spoken = dynamic_cast<const SpokenValue *>(object);
    return widget && spoken ? new SpokenValueInterface(widget, spoken) : nullptr;
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

SpokenValue::SpokenValue()
{
    QAccessible::installFactory(spokenInterface); // Once: Qt drops repetitions.
}

void SpokenValue::announceChange(QWidget *self)
{
    if (!Listeners::any())
        return;
    QString text = spokenValue();
    if (text == m_announced)
        return;
    m_announced = std::move(text);
    QAccessibleValueChangeEvent changedValue(self, m_announced);
    QAccessible::updateAccessibility(&changedValue);
    QAccessibleEvent changedDescription(self, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changedDescription);
}

} // namespace corvane
