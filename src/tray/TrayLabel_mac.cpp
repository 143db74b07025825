#include "threads/MainThread.h"
#include "tray/MetricMenu.h"
#include "tray/RolelessActions.h"
#include "tray/StatusLabel.h"
#include "tray/TrayLabel.h"
#include "ui/Theme.h"

namespace corvane {

struct TrayLabel::Bar {
    Bar(TrayLabel &label, const QList<QAction *> &commands);

    MetricMenu menu;
    LabelNumbers numbers = {}; ///< Shown now.
    StatusItem item;
};

TrayLabel::Bar::Bar(TrayLabel &label, const QList<QAction *> &commands)
    : menu(withoutRoles(commands, &label)),
      item({.open =
                [&label](const StatusPlace &place) { emit label.activated(statusAnchor(place)); },
            .menu = [this]() -> void * { return menu.toNSMenu(); }},
           statusColor(Theme::plate))
{
}

TrayLabel::TrayLabel(const QList<QAction *> &commands, QObject *parent, const TrayWaits &)
    : QObject(parent),
      m_bar(std::make_unique<Bar>(*this, commands))
{
    assertMainThread();
}

TrayLabel::~TrayLabel() = default;

/// A Mac always has a menu bar.
bool TrayLabel::isAvailable() const
{
    return true;
}

void TrayLabel::show(const SystemMetrics &current)
{
    m_bar->menu.show(current);
    const LabelNumbers numbers = labelNumbers(current);
    if (numbers == m_bar->numbers)
        return;
    m_bar->numbers = numbers;
    m_bar->item.show(statusRuns(numbers), inWords(numbers).toStdString());
}

} // namespace corvane
