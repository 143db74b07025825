#pragma once

#include "tray/TrayPicture.h"
#include "ui/MetricText.h"

#include <QObject>

#include <memory>
#include <vector>

class QMenu;
class QSystemTrayIcon;

namespace corvane {

/// The label as three square icons, one number each, for X11's older tray protocol (XEmbed), which
/// shows only square icons. Owned by the label, whose menu all icons share and which outlives them;
/// main thread. An icon is drawn again only when its text changed. The icons appear as soon as such
/// a tray exists.
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
    struct Item {
        LabelPosition position;
        LabelNumber number = {};
        std::unique_ptr<QSystemTrayIcon> icon;
    };
    void addItem(LabelPosition position, QMenu &menu);

    std::vector<Item> m_items; ///< Memory, GPU, power.
    QString m_toolTip;
};

} // namespace corvane
