#include "tray/DBusMenuObject_linux.h"

#include "bus/LoopConnection.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr BusInterface interface {
    DBusMenuObject::path, "com.canonical.dbusmenu"
};

DBusMenu &menuOf(void *object)
{
    return *static_cast<DBusMenu *>(object);
}

void writeItem(BusWriter &writer, const DBusMenuItem &item)
{
    writer.structure("ia{sv}",
                     [&item](BusWriter &members) { members << item.id << item.properties; });
}

void writeItems(BusWriter &writer, const QList<DBusMenuItem> &items)
{
    writer.array("(ia{sv})", [&items](BusWriter &array) {
        for (const DBusMenuItem &item : items)
            writeItem(array, item);
    });
}

void writeIds(BusWriter &writer, const QList<int> &ids)
{
    writer.array("i", [&ids](BusWriter &array) {
        for (const int id : ids)
            array << id;
    });
}

/// The interface's form of an item with its children, which have none.
void writeLayout(BusWriter &writer, const DBusMenuItem &item, const QList<DBusMenuItem> &children)
{
    writer.structure("ia{sv}av", [&](BusWriter &members) {
        members << item.id << item.properties;
        members.array("v", [&](BusWriter &array) {
            for (const DBusMenuItem &child : children)
                array.variant("(ia{sv}av)",
                              [&](BusWriter &variant) { writeLayout(variant, child, {}); });
        });
    });
}

DBusMenuEvent readEvent(BusReader &reader)
{
    const int id = reader.number();
    const QString type = reader.text();
    reader.skip("vu"); // Data and time.
    return {.id = id, .type = type};
}

int getLayout(sd_bus_message *call, void *object, sd_bus_error *)
{
    BusReader reader(call);
    const int parentId = reader.number();
    const int depth = reader.number();
    DBusMenu &menu = menuOf(object);
    const QList<DBusMenuItem> items = menu.layout(parentId, depth, reader.texts());
    return answerCall(call, [&](BusWriter &writer) {
        writer << menu.revision();
        writeLayout(writer, items.first(), items.sliced(1));
    });
}

int getGroupProperties(sd_bus_message *call, void *object, sd_bus_error *)
{
    BusReader reader(call);
    const QList<int> ids = reader.numbers();
    const auto items = menuOf(object).groupProperties(ids, reader.texts());
    return answerCall(call, [&items](BusWriter &writer) { writeItems(writer, items); });
}

int getMenuProperty(sd_bus_message *call, void *object, sd_bus_error *)
{
    BusReader reader(call);
    const int id = reader.number();
    const QVariant value = menuOf(object).itemProperty(id, reader.text());
    return answerCall(call, [&value](BusWriter &writer) { writer.variant(value); });
}

int event(sd_bus_message *call, void *object, sd_bus_error *)
{
    BusReader reader(call);
    menuOf(object).takeEvent(readEvent(reader));
    return answerCall(call);
}

int eventGroup(sd_bus_message *call, void *object, sd_bus_error *)
{
    QList<DBusMenuEvent> events;
    BusReader(call).structures("isvu",
                               [&events](BusReader &reader) { events.append(readEvent(reader)); });
    const QList<int> unknown = menuOf(object).takeEvents(events);
    return answerCall(call, [&unknown](BusWriter &writer) { writeIds(writer, unknown); });
}

int aboutToShow(sd_bus_message *call, void *object, sd_bus_error *)
{
    const bool hasChanged = menuOf(object).aboutToShow(BusReader(call).number());
    return answerCall(call, [hasChanged](BusWriter &writer) { writer << hasChanged; });
}

int aboutToShowGroup(sd_bus_message *call, void *object, sd_bus_error *)
{
    QList<int> unknown;
    const QList<int> updated = menuOf(object).aboutToShowGroup(BusReader(call).numbers(), unknown);
    return answerCall(call, [&](BusWriter &writer) {
        writeIds(writer, updated);
        writeIds(writer, unknown);
    });
}

template <auto write>
constexpr auto constant = &getProperty<DBusMenu, write>;

constexpr auto writeVersion = [](BusWriter &writer, const DBusMenu &) { writer << 3U; };
constexpr auto writeDirection = [](BusWriter &writer, const DBusMenu &) { writer << u"ltr"_s; };
constexpr auto writeStatus = [](BusWriter &writer, const DBusMenu &) { writer << u"normal"_s; };
constexpr auto writeThemePath = [](BusWriter &writer, const DBusMenu &) {
    writer << QStringList();
};

const sd_bus_vtable table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Version", "u", constant<writeVersion>, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", constant<writeDirection>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", constant<writeStatus>, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", constant<writeThemePath>, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, 0),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", getGroupProperties, 0),
    SD_BUS_METHOD("GetProperty", "is", "v", getMenuProperty, 0),
    SD_BUS_METHOD("Event", "isvu", "", event, 0),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", eventGroup, 0),
    SD_BUS_METHOD("AboutToShow", "i", "b", aboutToShow, 0),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", aboutToShowGroup, 0),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

} // namespace

DBusMenuObject::DBusMenuObject(QMenu &menu) : m_menu(menu) { }

void DBusMenuObject::exportOver(LoopConnection &bus)
{
    bus.addObject(interface, table, &m_menu);
    QObject::connect(
        &m_menu, &DBusMenu::propertiesUpdated, &bus, [&bus](const QList<DBusMenuItem> &updated) {
            bus.emitSignal(interface, "ItemsPropertiesUpdated", [&updated](BusWriter &writer) {
                writeItems(writer, updated);
                writer.array("(ias)", [](BusWriter &) {});
            });
        });
    QObject::connect(&bus, &LoopConnection::signalsWereDropped, &m_menu, &DBusMenu::announceLayout);
    QObject::connect(&m_menu, &DBusMenu::layoutUpdated, &bus, [&bus](uint revision) {
        bus.emitSignal(interface, "LayoutUpdated",
                       [revision](BusWriter &writer) { writer << revision << DBusMenu::rootId; });
    });
}

} // namespace corvane
