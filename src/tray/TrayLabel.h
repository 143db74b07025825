#pragma once

#include "records/SystemMetrics.h"
#include "tray/TrayWaits.h"

#include <QList>
#include <QObject>

#include <memory>

class QAction;
class QPoint;

namespace corvane {

/// The label in the desktop's bar. Owned by the application, which passes it each new sample. It
/// takes a form that this desktop can show, and appears by itself when a tray starts late or
/// restarts; without a tray nothing is shown. All items of the label share one menu. Main thread.
class TrayLabel : public QObject {
    Q_OBJECT

public:
    /// The commands are part of its menu; they outlive it.
    explicit TrayLabel(const QList<QAction *> &commands, QObject *parent = nullptr,
                       const TrayWaits &waits = {});
    ~TrayLabel() override;

    /// Whether the label is visible now.
    bool isAvailable() const;

    void show(const SystemMetrics &current);

signals:
    void activated(const QPoint &anchor); ///< A click at this point, to open the panel.
    void openWindowRequested();           ///< A click with the middle button.
    /// Emitted at most once, soon after the start: there is no tray so far. `advice` is a sentence
    /// on what would change that.
    void trayIsMissing(const QString &advice);

private:
    struct Bar; ///< The parts of the label on this system.
    std::unique_ptr<Bar> m_bar;
};

} // namespace corvane
