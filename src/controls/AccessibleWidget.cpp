#include "controls/AccessibleWidget.h"

#include "threads/MainThread.h"

#include <QAccessibleWidget>
#include <QPointer>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// One text of a widget, which owns it. Invalid once the widget has fewer texts.
class AccessibleTextInterface : public QAccessibleInterface {
public:
    AccessibleTextInterface(AccessibleWidget *widget, int index) : m_widget(widget), m_index(index)
    {
    }

    bool isValid() const override
    {
        return m_widget && static_cast<std::size_t>(m_index) < m_widget->accessibleTexts().size();
    }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_widget);
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    void setText(QAccessible::Text, const QString &) override { }
    QAccessible::Role role() const override { return QAccessible::StaticText; }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.readOnly = true;
        state.invisible = !isValid() || !m_widget->isVisible();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        const AccessibleText text = shown();
        if (kind == QAccessible::Value)
            return text.value;
        if (kind == QAccessible::Description)
            return text.description;
        if (kind != QAccessible::Name)
            return {};
        // Screen readers read only the name of a static text, so it contains the value too.
        return text.name.isEmpty() ? text.value : text.name + u": "_s + text.value;
    }

    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect place = shown().place.toAlignedRect();
        return {m_widget->mapToGlobal(place.topLeft()), place.size()};
    }

private:
    AccessibleText shown() const
    {
        return m_widget->accessibleTexts()[static_cast<std::size_t>(m_index)];
    }

    QPointer<AccessibleWidget> m_widget;
    int m_index;
};

/// The widget: its texts come first, then its child widgets.
class AccessibleWidgetInterface : public QAccessibleWidget {
public:
    explicit AccessibleWidgetInterface(AccessibleWidget *widget)
        : QAccessibleWidget(widget, widget->accessibleRole()),
          m_widget(widget)
    {
    }

    ~AccessibleWidgetInterface() override
    {
        for (const QAccessible::Id id : m_texts)
            QAccessible::deleteAccessibleInterface(id);
    }

    QString text(QAccessible::Text kind) const override
    {
        // Linux's accessibility bus has descriptions where a Mac has values.
        const bool isValue = kind == QAccessible::Value || kind == QAccessible::Description;
        const QString value = isValue ? m_widget->accessibleValue() : QString();
        return value.isEmpty() ? QAccessibleWidget::text(kind) : value;
    }

    int childCount() const override { return textCount() + QAccessibleWidget::childCount(); }

    QAccessibleInterface *child(int index) const override
    {
        if (index < 0)
            return nullptr;
        if (index >= textCount())
            return QAccessibleWidget::child(index - textCount());
        while (static_cast<int>(m_texts.size()) <= index) {
            const int next = static_cast<int>(m_texts.size());
            m_texts.push_back(QAccessible::registerAccessibleInterface(
                new AccessibleTextInterface(m_widget, next)));
        }
        return QAccessible::accessibleInterface(m_texts[static_cast<std::size_t>(index)]);
    }

    int indexOfChild(const QAccessibleInterface *wanted) const override
    {
        for (std::size_t i = 0; i < m_texts.size(); ++i) {
            if (QAccessible::accessibleInterface(m_texts[i]) == wanted)
                return static_cast<int>(i);
        }
        const int index = QAccessibleWidget::indexOfChild(wanted);
        return index < 0 ? index : index + textCount();
    }

private:
    int textCount() const { return static_cast<int>(m_widget->accessibleTexts().size()); }

    AccessibleWidget *m_widget;
    mutable std::vector<QAccessible::Id> m_texts = {}; ///< Created on first access.
};

/// Whether a screen reader or another assistive program is active.
class AssistiveTechnology : public QAccessible::ActivationObserver {
public:
    static bool isActive()
    {
        static AssistiveTechnology technology;
        return technology.m_active;
    }

private:
    AssistiveTechnology() { QAccessible::installActivationObserver(this); }
    ~AssistiveTechnology() override { QAccessible::removeActivationObserver(this); }
    void accessibilityActiveChanged(bool active) override { m_active = active; }

    bool m_active = QAccessible::isActive();
};

QAccessibleInterface *accessibleWidgetInterface(const QString &className, QObject *object)
{
    if (className != QLatin1StringView(AccessibleWidget::staticMetaObject.className()))
        return nullptr;
    return new AccessibleWidgetInterface(static_cast<AccessibleWidget *>(object));
}

} // namespace

AccessibleWidget::AccessibleWidget(QWidget *parent, QAccessible::Role role)
    : QWidget(parent),
      m_role(role)
{
    assertMainThread();
    QAccessible::installFactory(accessibleWidgetInterface); // Qt ignores repetitions.
}

void AccessibleWidget::announceText(int index)
{
    // There is no child to name in an event for a text that is gone.
    if (!AssistiveTechnology::isActive()
        || static_cast<std::size_t>(index) >= accessibleTexts().size())
        return;
    QAccessibleEvent event(this, QAccessible::NameChanged);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}

void AccessibleWidget::announceValue()
{
    if (!AssistiveTechnology::isActive())
        return;
    QString value = accessibleValue();
    if (value == m_announcedValue)
        return;
    m_announcedValue = std::move(value);
    QAccessibleValueChangeEvent changedValue(this, m_announcedValue);
    QAccessible::updateAccessibility(&changedValue);
    QAccessibleEvent changedDescription(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changedDescription);
}

} // namespace corvane
