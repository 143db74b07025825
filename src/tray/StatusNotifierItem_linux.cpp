#include "tray/StatusNotifierItem_linux.h"

#include "threads/MainThread.h"
#include "tray/StatusNotifierWatcher_linux.h"
#include "windows/WindowTools.h"

#include <algorithm>

namespace corvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr BusInterface interface {
    "/StatusNotifierItem", "org.kde.StatusNotifierItem"
};

void writePixmaps(BusWriter &writer, const StatusNotifierPixmaps &pixmaps)
{
    writer.array("(iiay)", [&pixmaps](BusWriter &array) {
        for (const StatusNotifierPixmap &pixmap : pixmaps)
            array.structure("iiay", [&pixmap](BusWriter &members) {
                members << pixmap.width << pixmap.height << pixmap.bytes;
            });
    });
}

/// (sa(iiay)ss): the name of an icon, its pixmaps, a title and a text. The text is the title
/// because some desktops show only that.
void writeToolTip(BusWriter &writer, const QString &text)
{
    writer.structure("sa(iiay)ss", [&text](BusWriter &members) {
        members << QString();
        writePixmaps(members, {});
        members << text << QString();
    });
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QString &id, QMenu &menu, const TrayWaits &waits,
                                       QObject *parent)
    : QObject(parent),
      m_id(id),
      m_menu(menu),
      m_waits(waits)
{
    assertMainThread();
    m_settling.setSingleShot(true);
    connect(&m_settling, &QTimer::timeout, this, &StatusNotifierItem::settled);
}

StatusNotifierItem::~StatusNotifierItem() = default;

void StatusNotifierItem::announce(const char *signal, const BusWriter::Write &write)
{
    if (m_bus)
        m_bus->emitSignal(interface, signal, write);
}

void StatusNotifierItem::showTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    announce("NewTitle");
}

void StatusNotifierItem::showPictures(Pictures pictures)
{
    m_paint = std::move(pictures);
    m_pixmaps.clear();
    announce("NewIcon");
}

void StatusNotifierItem::announceToolTip()
{
    if (m_toolTip == m_announcedToolTip)
        return;
    m_announcedToolTip = m_toolTip;
    announce("NewToolTip");
}

void StatusNotifierItem::showLabel(const QString &text, const QString &widest)
{
    if (text == m_label && widest == m_widestLabel)
        return;
    m_label = text;
    m_widestLabel = widest;
    announceLabel();
}

void StatusNotifierItem::announceLabel()
{
    announce("XAyatanaNewLabel", [this](BusWriter &writer) { writer << m_label << m_widestLabel; });
}

void StatusNotifierItem::announceAll()
{
    announce("NewTitle");
    announce("NewIcon");
    announce("NewToolTip");
    announceLabel();
}

void StatusNotifierItem::registerAtWatcher()
{
    const QString name = m_bus->name();
    m_bus->call(
        StatusNotifierWatcher::service, StatusNotifierWatcher::interface,
        "RegisterStatusNotifierItem", [&name](BusWriter &writer) { writer << name; },
        [this](bool isReply) {
            if (!isReply && m_settling.isActive())
                m_settling.start(0ms);
        });
    m_settling.start(m_waits.read);
    m_longest = QDeadlineTimer(m_waits.read);
}

bool StatusNotifierItem::isInTray(const QStringList &listed) const
{
    // One known watcher writes an @ between the name and the path.
    const QString name = m_bus ? m_bus->name() : QString();
    return m_wasRead && std::ranges::any_of(listed, [&name](const QString &item) {
               return item == name || item.startsWith(name + u'/') || item.startsWith(name + u'@');
           });
}

const StatusNotifierPixmaps &StatusNotifierItem::iconPixmaps()
{
    if (m_pixmaps.isEmpty() && m_paint) {
        for (const QImage &picture : m_paint())
            m_pixmaps.append(StatusNotifierPixmap::from(picture));
    }
    m_wasRead = true;
    if (m_settling.isActive())
        m_settling.start(
            std::min(m_waits.quiet, std::chrono::milliseconds(m_longest.remainingTime())));
    return m_pixmaps;
}

/// Functions for a table of what an item exports. What a call emits reaches the program from the
/// event loop, after the desktop has its answer.
struct StatusNotifierItem::Exported {
    using Item = StatusNotifierItem;
    using PointSignal = void (Item::*)(const QPoint &);

    template <auto write>
    static constexpr auto property = &getProperty<Item, write>;

    template <auto act>
    static int onCall(sd_bus_message *call, void *item, sd_bus_error *)
    {
        BusReader arguments(call);
        act(*static_cast<Item *>(item), arguments);
        return answerCall(call);
    }

    template <PointSignal signal>
    static void emitPoint(Item &item, BusReader &arguments)
    {
        const int x = arguments.number();
        const QPoint position(x, arguments.number());
        QMetaObject::invokeMethod(
            &item, [&item, position] { emit(item.*signal)(position); }, Qt::QueuedConnection);
    }

    static void emitSecondary(Item &item, BusReader &)
    {
        QMetaObject::invokeMethod(&item, &Item::secondaryActivated, Qt::QueuedConnection);
    }

    static void useToken(Item &, BusReader &arguments)
    {
        useActivationToken(arguments.text().toUtf8());
    }

    static void doNothing(Item &, BusReader &) { }

    static void writeNothing(BusWriter &writer, Item &) { writer << QString(); }
    static void writeNoPixmaps(BusWriter &writer, Item &) { writePixmaps(writer, {}); }
    static void writeCategory(BusWriter &writer, Item &) { writer << u"Hardware"_s; }
    static void writeStatus(BusWriter &writer, Item &) { writer << u"Active"_s; }
    static void writeId(BusWriter &writer, Item &item) { writer << item.m_id; }
    static void writeTitle(BusWriter &writer, Item &item) { writer << item.m_title; }
    static void writeWindow(BusWriter &writer, Item &) { writer << 0; }
    static void writeIcon(BusWriter &writer, Item &item)
    {
        writePixmaps(writer, item.iconPixmaps());
    }
    static void writeDescription(BusWriter &writer, Item &item) { writer << item.m_toolTip; }
    static void writeTip(BusWriter &writer, Item &item) { writeToolTip(writer, item.m_toolTip); }
    static void writeIsMenu(BusWriter &writer, Item &) { writer << false; }
    static void writeMenu(BusWriter &writer, Item &) { writer.path(DBusMenuObject::path); }
    static void writeLabel(BusWriter &writer, Item &item) { writer << item.m_label; }
    static void writeWidest(BusWriter &writer, Item &item) { writer << item.m_widestLabel; }

    static constexpr auto constant = SD_BUS_VTABLE_PROPERTY_CONST;

    static constexpr sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("Category", "s", property<writeCategory>, 0, constant),
        SD_BUS_PROPERTY("Id", "s", property<writeId>, 0, constant),
        SD_BUS_PROPERTY("Title", "s", property<writeTitle>, 0, 0),
        SD_BUS_PROPERTY("Status", "s", property<writeStatus>, 0, constant),
        SD_BUS_PROPERTY("WindowId", "i", property<writeWindow>, 0, constant),
        SD_BUS_PROPERTY("IconThemePath", "s", property<writeNothing>, 0, constant),
        SD_BUS_PROPERTY("IconName", "s", property<writeNothing>, 0, constant),
        SD_BUS_PROPERTY("IconPixmap", "a(iiay)", property<writeIcon>, 0, 0),
        SD_BUS_PROPERTY("IconAccessibleDesc", "s", property<writeDescription>, 0, 0),
        SD_BUS_PROPERTY("OverlayIconName", "s", property<writeNothing>, 0, constant),
        SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", property<writeNoPixmaps>, 0, constant),
        SD_BUS_PROPERTY("AttentionIconName", "s", property<writeNothing>, 0, constant),
        SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", property<writeNoPixmaps>, 0, constant),
        SD_BUS_PROPERTY("AttentionMovieName", "s", property<writeNothing>, 0, constant),
        SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", property<writeTip>, 0, 0),
        SD_BUS_PROPERTY("ItemIsMenu", "b", property<writeIsMenu>, 0, constant),
        SD_BUS_PROPERTY("Menu", "o", property<writeMenu>, 0, constant),
        SD_BUS_PROPERTY("XAyatanaLabel", "s", property<writeLabel>, 0, 0),
        SD_BUS_PROPERTY("XAyatanaLabelGuide", "s", property<writeWidest>, 0, 0),
        SD_BUS_METHOD("Activate", "ii", "", onCall<emitPoint<&Item::activated>>, 0),
        SD_BUS_METHOD("SecondaryActivate", "ii", "", onCall<emitSecondary>, 0),
        SD_BUS_METHOD("XAyatanaSecondaryActivate", "u", "", onCall<emitSecondary>, 0),
        SD_BUS_METHOD("ContextMenu", "ii", "", onCall<emitPoint<&Item::contextMenuRequested>>, 0),
        SD_BUS_METHOD("Scroll", "is", "", onCall<doNothing>, 0),
        SD_BUS_METHOD("ProvideXdgActivationToken", "s", "", onCall<useToken>, 0),
        SD_BUS_SIGNAL("NewTitle", "", 0),
        SD_BUS_SIGNAL("NewIcon", "", 0),
        SD_BUS_SIGNAL("NewAttentionIcon", "", 0),
        SD_BUS_SIGNAL("NewOverlayIcon", "", 0),
        SD_BUS_SIGNAL("NewToolTip", "", 0),
        SD_BUS_SIGNAL("NewStatus", "s", 0),
        SD_BUS_SIGNAL("XAyatanaNewLabel", "ss", 0),
        SD_BUS_VTABLE_END,
    };
};

void StatusNotifierItem::exportOver(BusHandle bus)
{
    m_bus = std::make_unique<LoopConnection>(std::move(bus));
    m_menu.exportOver(*m_bus);
    m_bus->addObject(interface, Exported::table, this);
    connect(m_bus.get(), &LoopConnection::signalsWereDropped, this,
            &StatusNotifierItem::announceAll);
}

} // namespace corvane
