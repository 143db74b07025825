#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>

class QDBusMessage;

namespace corvane::test {

/// The programs of a session as a screen reader sees them, over the accessibility bus. Each call
/// requests the present state; the result is empty if the object no longer exists.
class AccessibilityBus : public QObject {
    Q_OBJECT

public:
    /// One object of a program: its bus name and path.
    struct Object {
        QString program = {};
        QString path = {};

        friend bool operator==(const Object &, const Object &) = default;
    };

    /// Announces a screen reader to the session, so that programs export their objects.
    AccessibilityBus();
    ~AccessibilityBus() override;

    bool isConnected() const { return m_bus.isConnected(); }

    /// The root object of the running program of that name.
    std::optional<Object> program(const QString &name) const;

    QString name(const Object &object) const;
    QString role(const Object &object) const;
    bool isShowing(const Object &object) const;
    bool isChecked(const Object &object) const;
    QRect place(const Object &object) const; ///< In screen coordinates.
    QList<Object> children(const Object &object) const;

    /// The object that received the keyboard focus last; absent before the first.
    const std::optional<Object> &focused() const { return m_focused; }

    /// The window that contains the object.
    Object window(const Object &object) const;

    /// The first object at or below `root` that meets the condition; absent if there is none.
    using Condition = std::function<bool(const Object &object)>;
    std::optional<Object> find(const Object &root, const Condition &condition) const;

    /// The object and everything below it, one line each, for the message of a failed test.
    QString description(const Object &root, int depth) const;

private slots:
    void noteState(const QDBusMessage &event);

private:
    QVariant property(const Object &object, const QString &interface, const QString &name) const;
    QVariantList call(const Object &object, const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) const;
    bool hasState(const Object &object, int state) const;

    QDBusConnection m_bus;
    std::optional<Object> m_focused;
};

} // namespace corvane::test
