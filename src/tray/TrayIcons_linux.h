#pragma once

#include "ui/MetricText.h"

#include <QObject>

#include <memory>
#include <vector>

class QMenu;
class QSystemTrayIcon;

namespace corvane {

/// The label as square icons, one number each, for X11's older tray protocol (XEmbed), which shows
/// only square icons. Owned by the label, whose menu all icons share and which outlives them; main
/// thread. An icon is drawn again only when its text changed, and belongs to a place in the bar:
/// the rightmost comes and goes with the count of numbers. The icons appear as soon as such a tray
/// exists.
class TrayIcons : public QObject {
    Q_OBJECT

public:
    explicit TrayIcons(QMenu &menu, QObject *parent = nullptr);
    ~TrayIcons() override;

    void show(const MetricValues &current);

signals:
    void activated();
    void secondaryActivated();

private:
    void addIcon();

    QMenu &m_menu;
    std::vector<std::unique_ptr<QSystemTrayIcon>> m_icons; ///< From left to right.
    LabelNumbers m_numbers = {};                           ///< Shown now.
};

} // namespace corvane
