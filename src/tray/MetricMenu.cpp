#include "tray/MetricMenu.h"

namespace corvane {

using namespace Qt::StringLiterals;

MetricMenu::MetricMenu(const QList<QAction *> &commands, QWidget *parent) : QMenu(parent)
{
    for (QAction *&row : m_rows) {
        row = addAction(QString());
        row->setEnabled(false);
    }
    addSeparator();
    addActions(commands);

    connect(this, &QMenu::aboutToShow, this, [this] {
        m_isOpen = true;
        updateRows();
    });
    connect(this, &QMenu::aboutToHide, this, [this] { m_isOpen = false; });
    updateRows();
}

void MetricMenu::show(const SystemMetrics &current)
{
    m_current = current;
    if (m_isOpen)
        updateRows();
}

void MetricMenu::updateRows()
{
    const auto rows = metricRows(m_current);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        // An ampersand in a menu marks a key; here it would be part of the text.
        const QString text = inOneLine(rows[row]).replace("&"_L1, "&&"_L1);
        if (m_rows[row]->text() != text)
            m_rows[row]->setText(text);
    }
}

} // namespace corvane
