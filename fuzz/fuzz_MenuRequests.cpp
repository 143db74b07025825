#include "OffscreenApplication.h"

#include "tray/DBusMenu_linux.h"

#include <QMenu>

#include <cstdint>
#include <string_view>

using namespace corvane;

namespace {

/// Reads values from the front of a byte sequence; zeros after its end.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : m_bytes(bytes) { }

    bool isEmpty() const { return m_bytes.empty(); }

    int number()
    {
        int value = 0;
        for (int place = 0; place < 4; ++place)
            value = static_cast<int>(static_cast<unsigned int>(value) << 8 | byte());
        return value;
    }

    /// Near the existing ids, or any.
    int id() { return (byte() & 1) != 0 ? number() : byte() % 6 - 1; }

    QString text()
    {
        static const char *const known[] = {"clicked", "opened",  "closed", "label",
                                            "visible", "enabled", "type",   "children-display"};
        const unsigned int choice = byte();
        if (choice < 200)
            return QString::fromLatin1(known[choice % std::size(known)]);
        const std::string_view taken = m_bytes.substr(0, choice - 200);
        m_bytes.remove_prefix(taken.size());
        return QString::fromUtf8(taken.data(), static_cast<qsizetype>(taken.size()));
    }

    unsigned int byte()
    {
        if (m_bytes.empty())
            return 0;
        const auto first = static_cast<unsigned char>(m_bytes.front());
        m_bytes.remove_prefix(1);
        return first;
    }

private:
    std::string_view m_bytes;
};

void request(DBusMenu &menu, Bytes &bytes)
{
    QList<int> unknown;
    switch (bytes.byte() % 7) {
    case 0:
        if (menu.layout(bytes.id(), bytes.number(), {bytes.text(), bytes.text()}).size() > 1 + 3)
            __builtin_trap();
        break;
    case 1:
        menu.groupProperties({bytes.id(), bytes.id(), bytes.id()}, {bytes.text()});
        break;
    case 2:
        if (!menu.itemProperty(bytes.id(), bytes.text()).isValid())
            __builtin_trap(); // The bus cannot carry it.
        break;
    case 3:
        menu.takeEvent({.id = bytes.id(), .type = bytes.text()});
        break;
    case 4:
        menu.takeEvents(
            {{.id = bytes.id(), .type = bytes.text()}, {.id = bytes.id(), .type = bytes.text()}});
        break;
    case 5:
        menu.aboutToShow(bytes.id());
        break;
    default:
        menu.aboutToShowGroup({bytes.id(), bytes.id()}, unknown);
    }
}

} // namespace

/// A sequence of any requests that a desktop may send to the menu over the bus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::needApplication();
    QMenu menu;
    menu.addAction(QStringLiteral("63 % memory"))->setEnabled(false);
    menu.addSeparator();
    QAction *command = menu.addAction(QStringLiteral("&Open"));
    int triggered = 0;
    QObject::connect(command, &QAction::triggered, [&triggered] { ++triggered; });
    QObject::connect(&menu, &QMenu::aboutToShow,
                     [command, turn = 0]() mutable { command->setText(QString::number(++turn)); });

    DBusMenu onBus(menu);
    Bytes bytes({reinterpret_cast<const char *>(data), size});
    while (!bytes.isEmpty())
        request(onBus, bytes);
    QCoreApplication::sendPostedEvents();
    if (triggered > static_cast<int>(size))
        __builtin_trap();
    return 0;
}
