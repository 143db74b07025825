#pragma once

#include "ui/MetricText.h"

#include <QMenu>

namespace corvane {

/// The label's menu: live values, then the commands, for desktops that show nothing else of an
/// item. All items of the label share it, so it may be open at several of them at once. The rows
/// are updated only while it is open. Owned by the label; main thread.
class MetricMenu : public QMenu {
    Q_OBJECT

public:
    explicit MetricMenu(const QList<QAction *> &commands, QWidget *parent = nullptr);

    void show(const MetricValues &current);

private:
    void updateRows();

    MetricValues m_current = SystemMetrics::placeholder();
    std::vector<QAction *> m_rows = {};
    QAction *m_separator; ///< After the rows.
    int m_openings = 0; ///< Each aboutToShow opens the menu once more, each aboutToHide once less.
};

} // namespace corvane
