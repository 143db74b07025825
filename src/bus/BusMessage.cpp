#include "bus/BusMessage.h"

#include <algorithm>

namespace corvane {

BusWriter &BusWriter::operator<<(bool value)
{
    const int truth = value ? 1 : 0; // As wide as the library reads it.
    return basic(SD_BUS_TYPE_BOOLEAN, &truth);
}

BusWriter &BusWriter::operator<<(int value)
{
    return basic(SD_BUS_TYPE_INT32, &value);
}

BusWriter &BusWriter::operator<<(uint value)
{
    return basic(SD_BUS_TYPE_UINT32, &value);
}

BusWriter &BusWriter::operator<<(const QString &text)
{
    return basic(SD_BUS_TYPE_STRING, text.toUtf8().constData());
}

BusWriter &BusWriter::operator<<(const QStringList &texts)
{
    return array("s", [&texts](BusWriter &writer) {
        for (const QString &text : texts)
            writer << text;
    });
}

BusWriter &BusWriter::operator<<(const QByteArray &bytes)
{
    if (m_result >= 0)
        m_result = sd_bus_message_append_array(m_message, SD_BUS_TYPE_BYTE, bytes.constData(),
                                               static_cast<std::size_t>(bytes.size()));
    return *this;
}

BusWriter &BusWriter::operator<<(const QVariantMap &properties)
{
    return array("{sv}", [&properties](BusWriter &writer) {
        for (auto property = properties.begin(); property != properties.end(); ++property) {
            writer.container(SD_BUS_TYPE_DICT_ENTRY, "sv", [&property](BusWriter &entry) {
                (entry << property.key()).variant(property.value());
            });
        }
    });
}

BusWriter &BusWriter::path(const char *objectPath)
{
    return basic(SD_BUS_TYPE_OBJECT_PATH, objectPath);
}

BusWriter &BusWriter::array(const char *element, const Write &write)
{
    return container(SD_BUS_TYPE_ARRAY, element, write);
}

BusWriter &BusWriter::structure(const char *members, const Write &write)
{
    return container(SD_BUS_TYPE_STRUCT, members, write);
}

BusWriter &BusWriter::variant(const char *type, const Write &write)
{
    return container(SD_BUS_TYPE_VARIANT, type, write);
}

BusWriter &BusWriter::basic(char type, const void *value)
{
    if (m_result >= 0)
        m_result = sd_bus_message_append_basic(m_message, type, value);
    return *this;
}

BusWriter &BusWriter::container(char type, const char *contents, const Write &write)
{
    if (m_result >= 0)
        m_result = sd_bus_message_open_container(m_message, type, contents);
    if (m_result < 0)
        return *this;
    write(*this);
    if (m_result >= 0)
        m_result = sd_bus_message_close_container(m_message);
    return *this;
}

BusWriter &BusWriter::variant(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return variant("b", [&value](BusWriter &writer) { writer << value.toBool(); });
    return variant("s", [&value](BusWriter &writer) { writer << value.toString(); });
}

int BusReader::number()
{
    int value = 0;
    return sd_bus_message_read_basic(m_message, SD_BUS_TYPE_INT32, &value) > 0 ? value : 0;
}

QString BusReader::text()
{
    const char *value = nullptr;
    if (sd_bus_message_read_basic(m_message, SD_BUS_TYPE_STRING, &value) <= 0)
        return {};
    return QString::fromUtf8(value);
}

QList<int> BusReader::numbers()
{
    const void *values = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(m_message, SD_BUS_TYPE_INT32, &values, &size) <= 0)
        return {};
    const int *first = static_cast<const int *>(values);
    return {first, first + std::min<std::size_t>(size / sizeof(int), mostElements)};
}

QStringList BusReader::texts()
{
    QStringList all;
    if (sd_bus_message_enter_container(m_message, SD_BUS_TYPE_ARRAY, "s") <= 0)
        return all;
    const char *value = nullptr;
    while (all.size() < mostElements
           && sd_bus_message_read_basic(m_message, SD_BUS_TYPE_STRING, &value) > 0)
        all.append(QString::fromUtf8(value));
    sd_bus_message_exit_container(m_message);
    return all;
}

void BusReader::skip(const char *types)
{
    sd_bus_message_skip(m_message, types);
}

void BusReader::structures(const char *members, const std::function<void(BusReader &)> &read)
{
    const QByteArray element = QByteArray("(") + members + ')';
    if (sd_bus_message_enter_container(m_message, SD_BUS_TYPE_ARRAY, element.constData()) <= 0)
        return;
    for (int count = 0; count < mostElements
         && sd_bus_message_enter_container(m_message, SD_BUS_TYPE_STRUCT, members) > 0;
         ++count) {
        read(*this);
        if (sd_bus_message_exit_container(m_message) < 0)
            return;
    }
    sd_bus_message_exit_container(m_message);
}

int answerCall(sd_bus_message *call, const BusWriter::Write &write)
{
    sd_bus_message *created = nullptr;
    const int failure = sd_bus_message_new_method_return(call, &created);
    if (failure < 0)
        return failure;
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> reply(
        created, &sd_bus_message_unref);
    BusWriter writer(reply.get());
    if (write)
        write(writer);
    return writer.result() < 0 ? writer.result()
                               : sd_bus_send(sd_bus_message_get_bus(call), reply.get(), nullptr);
}

} // namespace corvane
