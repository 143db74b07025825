#pragma once

#include "ui/MetricText.h"

#include <QMenu>

namespace corvane {

/// The menu of a label item: live read-outs, then the commands. For the desktops that show nothing
/// but a menu. Its rows change only while it is open.
class MetricMenu : public QMenu {
    Q_OBJECT

public:
    /// The commands belong to the label and stand in all of its menus.
    explicit MetricMenu(const QList<QAction *> &commands, QWidget *parent = nullptr);

    void show(const SystemMetrics &current);

private:
    void updateRows();

    SystemMetrics m_current = SystemMetrics::placeholder();
    std::array<QAction *, 5> m_rows = {};
    bool m_isOpen = false;
};

} // namespace corvane
