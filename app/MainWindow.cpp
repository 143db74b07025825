#include "app/MainWindow.h"

#include "cards/Theme.h"

#include <QPainter>

namespace corvane {

MainWindow::MainWindow(QWidget *parent) : QWidget(parent)
{
    setWindowTitle(QStringLiteral("Corvane"));
    setMinimumSize(920, 760);
}

void MainWindow::show(const SystemMetrics &, const std::vector<SystemMetrics> &) { }

void MainWindow::showProcesses(const std::vector<ProcessRow> &) { }

void MainWindow::showWorkloads(const std::vector<AIWorkload> &) { }

void MainWindow::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), Theme::windowGradient(size()));
}

} // namespace corvane
