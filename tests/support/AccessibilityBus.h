#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>

class QDBusMessage;

namespace corvane::test {

/// What a screen reader sees of the programs of a session, over the accessibility bus. Each call
/// asks anew; what cannot be asked, because it is gone by now, is empty.
class AccessibilityBus : public QObject {
    Q_OBJECT

public:
    /// One object of a program: its bus name and path.
    struct Object {
        QString program = {};
        QString path = {};

        friend bool operator==(const Object &, const Object &) = default;
    };

    /// Says to the session that a screen reader runs, so that programs show themselves.
    AccessibilityBus();
    ~AccessibilityBus() override;

    bool isConnected() const { return m_bus.isConnected(); }

    /// The root object of the running program of that name.
    std::optional<Object> program(const QString &name) const;

    QString name(const Object &object) const;
    QString role(const Object &object) const;
    bool isShowing(const Object &object) const;
    bool isChecked(const Object &object) const;
    QRect place(const Object &object) const; ///< On the screen.
    QList<Object> children(const Object &object) const;

    /// The object that got the keyboard focus last.
    const std::optional<Object> &focused() const { return m_focused; }
    /// Qt complains of readers that ask for an object that is gone.
    void forgetFocus() { m_focused.reset(); }

    /// The window in which the object stands.
    Object window(const Object &object) const;

    /// The first of that kind below the object, or itself.
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
