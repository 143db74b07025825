#pragma once

#include "records/SystemMetrics.h"

#include <QList>
#include <QObject>

#include <memory>

class QAction;
class QPoint;

namespace corvane {

/// The label in the desktop's bar. Owned by the application, which shows it each new sample; main
/// thread. It takes the form that this desktop can show and comes by itself where a tray turns up
/// late or again. Without a tray nothing is shown.
class TrayLabel : public QObject {
    Q_OBJECT

public:
    /// The commands stand in its menus, where it has any; they outlive it.
    explicit TrayLabel(const QList<QAction *> &commands, QObject *parent = nullptr);
    ~TrayLabel() override;

    /// Whether the label can be seen now.
    bool isAvailable() const;

    void show(const SystemMetrics &current);

signals:
    void activated(const QPoint &anchor); ///< A click there: the panel is wanted.
    void openWindowRequested();           ///< A click with the middle button.
    /// Once, soon after the start: this desktop has no tray, at least not yet.
    void trayIsMissing();

private:
    struct Bar; ///< What stands in this system's bar.
    std::unique_ptr<Bar> m_bar;
};

} // namespace corvane
