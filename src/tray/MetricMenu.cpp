#include "tray/MetricMenu.h"

#include "threads/MainThread.h"

#include <algorithm>

namespace corvane {

using namespace Qt::StringLiterals;

MetricMenu::MetricMenu(const QList<QAction *> &commands, QWidget *parent) : QMenu(parent)
{
    assertMainThread();
    m_separator = addSeparator();
    addActions(commands);

    connect(this, &QMenu::aboutToShow, this, [this] {
        ++m_openings;
        updateRows();
    });
    connect(this, &QMenu::aboutToHide, this, [this] { m_openings = std::max(m_openings - 1, 0); });
    updateRows();
}

void MetricMenu::show(const MetricValues &current)
{
    m_current = current;
    if (m_openings > 0)
        updateRows();
}

void MetricMenu::updateRows()
{
    const auto rows = metricRows(m_current);
    while (m_rows.size() > rows.size()) {
        delete m_rows.back(); // Which also removes it from the menu.
        m_rows.pop_back();
    }
    while (m_rows.size() < rows.size()) {
        m_rows.push_back(new QAction(this));
        m_rows.back()->setEnabled(false);
        insertAction(m_separator, m_rows.back());
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        // An ampersand in a menu marks an access key; doubled, it is part of the text.
        const QString text = inOneLine(rows[row]).replace("&"_L1, "&&"_L1);
        if (m_rows[row]->text() != text)
            m_rows[row]->setText(text);
    }
}

} // namespace corvane
