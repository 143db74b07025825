#pragma once

#include "app/ReadOut.h"
#include "app/TrayPicture.h"

#include <QObject>

#include <memory>

class QSystemTrayIcon;

namespace corvane {

class ReadOutMenu;

/// The label in the desktop's tray: three square items, one number each. Owned by the application,
/// which shows it each new sample; main thread. An item is drawn and announced anew only when its
/// text changed. Without a tray nothing is shown.
class TrayLabel : public QObject {
    Q_OBJECT

public:
    explicit TrayLabel(QObject *parent = nullptr);
    ~TrayLabel() override;

    /// Whether this desktop has a tray to show the label in.
    static bool isAvailable();

    void show(const SystemMetrics &current);

signals:
    void activated(); ///< A click: the panel is wanted.
    void openWindowRequested();
    void quitRequested();

private:
    struct Item {
        LabelPosition position;
        LabelNumber number = {};
        std::unique_ptr<ReadOutMenu> menu;
        std::unique_ptr<QSystemTrayIcon> icon; ///< Shows the menu, so it goes first.
    };
    void addItem(LabelPosition position);

    std::vector<Item> m_items; ///< Memory, GPU, power.
    QString m_toolTip;
};

} // namespace corvane
