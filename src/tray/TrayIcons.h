#pragma once

#include "tray/TrayPicture.h"
#include "ui/MetricText.h"

#include <QObject>

#include <memory>
#include <vector>

class QAction;
class QSystemTrayIcon;

namespace corvane {

class MetricMenu;

/// The label as three square icons of the system's own kind, one number each: for X11's old tray
/// protocol, which knows nothing else. Owned by the label; main thread. An icon is drawn anew only
/// when its text changed; they stand wherever a tray is or turns up.
class TrayIcons : public QObject {
    Q_OBJECT

public:
    explicit TrayIcons(const QList<QAction *> &commands, QObject *parent = nullptr);
    ~TrayIcons() override;

    void show(const SystemMetrics &current);

signals:
    void activated();
    void secondaryActivated();

private:
    struct Item {
        LabelPosition position;
        LabelNumber number = {};
        std::unique_ptr<MetricMenu> menu;
        std::unique_ptr<QSystemTrayIcon> icon; ///< Shows the menu, so it goes first.
    };
    void addItem(LabelPosition position, const QList<QAction *> &commands);

    std::vector<Item> m_items; ///< Memory, GPU, power.
    QString m_toolTip;
};

} // namespace corvane
