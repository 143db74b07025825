#include "app/TrayLabel.h"

#include "app/TrayIcons.h"

#include <QCursor>

namespace corvane {

struct TrayLabel::Bar {
    explicit Bar(const QList<QAction *> &commands) : icons(commands) { }

    TrayIcons icons;
};

TrayLabel::TrayLabel(const QList<QAction *> &commands, QObject *parent)
    : QObject(parent),
      m_bar(std::make_unique<Bar>(commands))
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
