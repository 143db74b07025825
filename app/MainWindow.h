#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "sampling/SystemMetrics.h"

#include <QWidget>

#include <vector>

namespace corvane {

/// The dashboard window. Made by the application when it is opened, gone when it is closed; main
/// thread. It is told what to show.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);

    void show(const SystemMetrics &current, const std::vector<SystemMetrics> &history);
    void showProcesses(const std::vector<ProcessRow> &processes);
    void showWorkloads(const std::vector<AIWorkload> &workloads);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace corvane
