#pragma once

#include "platform/BootClock.h"
#include "ui/MetricText.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QMenu;

namespace corvane {

class PanelHeader;
class PanelRow;

/// The panel that drops down from the label: name, chip and total power, five live rows and two
/// buttons. Its actions are in a menu on it. Owned by the application, which shows it each new
/// sample; main thread. Its content is made when it is first opened and follows the samples while
/// it is open. Closes on a click elsewhere and on Escape.
class MenuBarContent : public QWidget {
    Q_OBJECT

public:
    /// `clock` counts seconds; a test steps its own.
    explicit MenuBarContent(std::function<double()> clock = secondsSinceBoot,
                            QWidget *parent = nullptr);

    /// Shows these numbers; an absent chip reading as 0.
    void show(const SystemMetrics &current);

    /// Opens it near `anchor` (a point on the screen), or closes it if it is open: what a click on
    /// the label does.
    void toggleAt(const QPoint &anchor);

    void setVisible(bool visible) override;

signals:
    void openWindowRequested();
    void quitRequested();

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

    SystemMetrics m_current = SystemMetrics::placeholder();
    PanelHeader *m_header = nullptr; ///< Null until it is first opened, as are the rows.
    std::array<PanelRow *, 5> m_rows = {};
    std::function<double()> m_clock;
    QPointer<QMenu> m_menu;                ///< While it is open.
    std::optional<double> m_hiddenAt = {}; ///< Nothing before it was first shown.
};

/// Top left corner of a panel of `size` that belongs to `anchor`: centred on it, below it in the
/// upper half of the screen and above it in the lower one, never outside `available`.
QPoint panelOrigin(const QPoint &anchor, const QSize &size, const QRect &available);

} // namespace corvane
