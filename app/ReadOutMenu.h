#pragma once

#include "app/ReadOut.h"

#include <QMenu>

namespace corvane {

/// The menu of a label item: live read-outs, then the panel's two commands. For the desktops that
/// show nothing but a menu. Its rows change only while it is open.
class ReadOutMenu : public QMenu {
    Q_OBJECT

public:
    explicit ReadOutMenu(QWidget *parent = nullptr);

    void show(const SystemMetrics &current);

signals:
    void openWindowRequested();
    void quitRequested();

private:
    void updateRows();

    SystemMetrics m_current = SystemMetrics::placeholder();
    std::array<QAction *, 5> m_rows = {};
    bool m_isOpen = false;
};

} // namespace corvane
