#include "app/TrayLabel.h"

#include "app/TrayIcons.h"

#include <QCursor>

namespace corvane {

struct TrayLabel::Bar {
    TrayIcons icons{{}}; ///< The panel has the commands.
};

TrayLabel::TrayLabel(QObject *parent) : QObject(parent), m_bar(std::make_unique<Bar>())
{
    connect(&m_bar->icons, &TrayIcons::activated, this, [this] { emit activated(QCursor::pos()); });
    connect(&m_bar->icons, &TrayIcons::secondaryActivated, this, &TrayLabel::openWindowRequested);
}

TrayLabel::~TrayLabel() = default;

/// A Mac always has a menu bar.
bool TrayLabel::isAvailable() const
{
    return true;
}

void TrayLabel::show(const SystemMetrics &current)
{
    m_bar->icons.show(current);
}

} // namespace corvane
