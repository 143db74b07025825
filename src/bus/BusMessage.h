#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

#include <systemd/sd-bus.h>

namespace corvane {

/// Writes values into a message that is being built and outlives this. After a failure, such as one
/// of memory, nothing more is written. Any thread.
class BusWriter {
public:
    using Write = std::function<void(BusWriter &)>;

    explicit BusWriter(sd_bus_message *message) : m_message(message) { }

    /// Negative after a failure: the system's error number.
    int result() const { return m_result; }

    BusWriter &operator<<(bool value);
    BusWriter &operator<<(int value);
    BusWriter &operator<<(uint value);
    BusWriter &operator<<(const QString &text); ///< s; up to the first NUL.
    BusWriter &operator<<(const QStringList &texts);
    BusWriter &operator<<(const QByteArray &bytes);       ///< ay
    BusWriter &operator<<(const QVariantMap &properties); ///< a{sv}

    BusWriter &path(const char *objectPath);
    BusWriter &array(const char *element, const Write &write);
    BusWriter &structure(const char *members, const Write &write);
    BusWriter &variant(const char *type, const Write &write);
    BusWriter &variant(const QVariant &value); ///< A truth value, or else a text.

private:
    BusWriter &basic(char type, const void *value);
    BusWriter &container(char type, const char *contents, const Write &write);

    sd_bus_message *m_message;
    int m_result = 0;
};

/// Reads the values of a received message, which outlives this, in their order. What the message
/// does not have there is 0 or empty. Of an array the first `mostElements` are read, since a
/// message may have millions; after one that is longer, and is not of numbers, nothing more can be
/// read. Any thread.
class BusReader {
public:
    static constexpr int mostElements = 256;

    explicit BusReader(sd_bus_message *message) : m_message(message) { }

    int number();
    QString text();
    QList<int> numbers();
    QStringList texts();
    void skip(const char *types);

    /// Calls `read` for each structure of an array.
    void structures(const char *members, const std::function<void(BusReader &)> &read);

private:
    sd_bus_message *m_message;
};

/// The getter of a property for a table of what an object exports: `write` writes its value.
template <typename Object, auto write>
int getProperty(sd_bus *, const char *, const char *, const char *, sd_bus_message *reply,
                void *object, sd_bus_error *)
{
    BusWriter writer(reply);
    write(writer, *static_cast<Object *>(object));
    return writer.result();
}

/// Answers a method call with the values that are written; returns what its handler has to.
int answerCall(sd_bus_message *call, const BusWriter::Write &write = {});

} // namespace corvane
