#pragma once

#include "chip/ChipIdentity.h"
#include "platform/BootClock.h"
#include "timeline/EnergyLedger.h"
#include "ui/MetricText.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QBoxLayout;
class QMenu;

namespace corvane {

class PanelHeader;
class PanelNote;
class PanelRow;

/// The panel that drops down from the label: name, chip and total power, a live row for each metric
/// of this machine, the room for a model where it is known (on a whole chip in the tool tip of the
/// memory), and two buttons. Its actions are in its context menu. The application owns it and
/// passes it each new sample. Its content is created when it is first opened, and updated while it
/// is open. It closes on a click elsewhere and on Escape. Main thread.
class MenuBarContent : public QWidget {
    Q_OBJECT

public:
    /// `clock` returns seconds; a test steps its own.
    explicit MenuBarContent(std::function<double()> clock = secondsSinceBoot,
                            QWidget *parent = nullptr,
                            const QString &chipName = SystemInfo::chipName());

    /// Shows the numbers of a sample; an absent chip reading as 0.
    void show(const SystemMetrics &current);

    /// What was measured of energy: the tool tip of the total power.
    void showEnergy(const EnergyReport &energy);

    /// Opens the panel near `anchor` (a point on the screen), or closes it if it is open. A click
    /// on the label calls this.
    void toggleAt(const QPoint &anchor);

    void setVisible(bool visible) override;

signals:
    void openWindowRequested();
    void quitRequested();
    void closed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool event(QEvent *event) override;

private:
    void prepare();
    void build();
    void showNumbers();
    void showRoom();
    void showRows(const std::vector<MetricRow> &rows);
    void place();

    MetricValues m_current = SystemMetrics::placeholder();
    QString m_energyTip;
    PanelHeader *m_header = nullptr; ///< Null until the panel is first opened, like the rows.
    QBoxLayout *m_rowColumn = nullptr;
    std::vector<PanelRow *> m_rows = {};
    PanelNote *m_room = nullptr;         ///< Hidden while the room for a model is not known.
    std::optional<QPoint> m_anchor = {}; ///< Where it was opened last; absent before that.
    std::function<double()> m_clock;
    const QString m_chipName;
    QPointer<QMenu> m_menu;                ///< Null while no context menu is open.
    std::optional<double> m_hiddenAt = {}; ///< Of the last closing; absent before it.
};

/// Top left corner of a panel of `size` at `anchor`: horizontally centred on it, below it in the
/// upper half of `available` and above it in the lower half, and moved to lie inside `available`.
QPoint panelOrigin(const QPoint &anchor, const QSize &size, const QRect &available);

} // namespace corvane
