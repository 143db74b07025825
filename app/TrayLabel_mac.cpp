#include "app/ReadOutMenu.h"
#include "app/StatusLabel.h"
#include "app/TrayLabel.h"
#include "cards/Theme.h"

#include <QAction>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

/// The label's child, which triggers its signal.
QAction *makeCommand(TrayLabel &label, const QString &text, void (TrayLabel::*signal)())
{
    auto *command = new QAction(text, &label);
    QObject::connect(command, &QAction::triggered, &label, signal);
    return command;
}

} // namespace

struct TrayLabel::Bar {
    explicit Bar(TrayLabel &label);

    ReadOutMenu menu;
    LabelNumbers numbers = {}; ///< As they stand there.
    StatusItem item;
};

TrayLabel::Bar::Bar(TrayLabel &label)
    : menu({makeCommand(label, u"Open Window"_s, &TrayLabel::openWindowRequested),
            makeCommand(label, u"Quit"_s, &TrayLabel::quitRequested)}),
      item({.open =
                [&label](const StatusPlace &place) { emit label.activated(statusAnchor(place)); },
            .menu = [this](const StatusPlace &place) { menu.popup(statusAnchor(place)); }},
           statusColor(Theme::plate()))
{
}

TrayLabel::TrayLabel(QObject *parent) : QObject(parent), m_bar(std::make_unique<Bar>(*this)) { }

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
