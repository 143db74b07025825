#include "panel/MenuBarContent.h"

#include "controls/ContextMenu.h"
#include "controls/PanelButton.h"
#include "panel/PanelHeader.h"
#include "panel/PanelNote.h"
#include "panel/PanelRow.h"
#include "threads/MainThread.h"
#include "ui/EnergyText.h"
#include "ui/PixelGrid.h"
#include "ui/RoomText.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"
#include "windows/PanelWindow.h"

#include <QBoxLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int panelWidth = 280;
constexpr int padding = 12;
constexpr int radius = 10;
constexpr int dividerGap = 10;
constexpr int rowGap = 8;
constexpr int buttonGap = 8;
constexpr int screenMargin = 8;

/// A hairline across the panel with the space above and below it: of whole device pixels and at
/// most one point thick, so that all dividers look alike at every scale.
class Divider : public QWidget {
public:
    explicit Divider(QWidget *parent) : QWidget(parent) { setFixedHeight(2 * dividerGap + 1); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const double scale = painter.deviceTransform().m22();
        const double thickness = std::max(std::floor(scale), 1.0) / scale;
        fillHairline(painter, QRectF(0, dividerGap, width(), thickness), Theme::divider);
    }
};

} // namespace

MenuBarContent::MenuBarContent(std::function<double()> clock, QWidget *parent,
                               const QString &chipName)
    : QWidget(parent, panelWindowFlags()),
      m_clock(std::move(clock)),
      m_chipName(chipName)
{
    assertMainThread();
    setWindowTitle(u"Corvane"_s);
    setAccessibleName(u"Corvane panel"_s);
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedWidth(panelWidth);
    setFocusPolicy(Qt::ClickFocus); // Tab would stop here without a ring.
}

void MenuBarContent::build()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(0);
    m_header = new PanelHeader(m_chipName, this);
    column->addWidget(m_header);
    column->addWidget(new Divider(this));
    m_rowColumn = new QVBoxLayout;
    m_rowColumn->setSpacing(rowGap);
    column->addLayout(m_rowColumn);
    m_room = new PanelNote(this);
    m_rowColumn->addWidget(m_room);
    column->addWidget(new Divider(this));

    auto *openWindow = new PanelButton(u"Open Window"_s, u"macwindow"_s, this);
    auto *quit = new PanelButton(u"Quit"_s, u"power"_s, this);
    connect(openWindow, &PanelButton::clicked, this, &MenuBarContent::openWindowRequested);
    connect(openWindow, &PanelButton::clicked, this, &QWidget::hide);
    connect(quit, &PanelButton::clicked, this, &MenuBarContent::quitRequested);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(buttonGap);
    buttons->addWidget(openWindow, 1);
    buttons->addWidget(quit);
    column->addLayout(buttons);
}

/// Creates the content if necessary, updates it, and takes its size.
void MenuBarContent::prepare()
{
    if (!m_header)
        build();
    showNumbers();
    adjustSize();
}

void MenuBarContent::setVisible(bool visible)
{
    if (visible && !isVisible())
        prepare();
    QWidget::setVisible(visible);
}

void MenuBarContent::show(const SystemMetrics &current)
{
    m_current = current;
    if (!isVisible())
        return;
    const QSize before = size(); // A part that appears may widen the window at once.
    showNumbers();
    adjustSize();
    if (size() != before && m_anchor)
        place();
}

void MenuBarContent::showEnergy(const EnergyReport &energy)
{
    m_energyTip = energyTip(energy, m_current.isWhole ? u"ANE"_s : u"NPU"_s);
    if (m_header)
        m_header->showEnergy(m_energyTip);
}

void MenuBarContent::showNumbers()
{
    m_header->showEnergy(m_energyTip);
    m_header->show(powerText(m_current));
    showRows(metricRows(m_current));
    showRoom();
}

void MenuBarContent::showRoom()
{
    const auto &room = m_current.room;
    const bool hasNote = room && !m_current.isWhole; // A whole chip's memory row explains it.
    if (m_room->isHidden() == hasNote) {
        m_room->setVisible(hasNote);
        m_rowColumn->invalidate(); // Qt would do it, but later.
    }
    if (hasNote)
        m_room->show(roomText(*room), roomReckoning(*room));
}

void MenuBarContent::showRows(const std::vector<MetricRow> &rows)
{
    while (m_rows.size() > rows.size()) {
        delete m_rows.back();
        m_rows.pop_back();
    }
    while (m_rows.size() < rows.size()) {
        m_rows.push_back(new PanelRow(this));
        m_rowColumn->insertWidget(static_cast<int>(m_rows.size()) - 1, m_rows.back());
        m_rows.back()->setVisible(true); // An open panel's layout would do it, but later.
    }
    for (std::size_t row = 0; row < rows.size(); ++row)
        m_rows[row]->show(rows[row]);
}

/// Moves the panel to its anchor, from which it extends according to its size.
void MenuBarContent::place()
{
    const QScreen *screen = QGuiApplication::screenAt(*m_anchor);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    move(panelOrigin(*m_anchor, size(), screen->availableGeometry()));
}

void MenuBarContent::toggleAt(const QPoint &anchor)
{
    // This may be the click that closed the panel: it reaches the label when the panel is closed
    // already.
    constexpr double sameClick = 0.25; // Seconds.
    if (isVisible()) {
        hide();
        return;
    }
    if (m_hiddenAt && m_clock() - *m_hiddenAt < sameClick)
        return;
    m_anchor = anchor;
    prepare(); // The position depends on the size.
    place();
    showPanelWindow(*this);
    setFocus(); // So that the first Tab goes to the first button.
}

void MenuBarContent::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), radius, Theme::panelFill);
    strokeRounded(painter, rect(), radius, Theme::panelStroke);
}

void MenuBarContent::resizeEvent(QResizeEvent *)
{
    // An X server without a compositor paints black where the window is transparent.
    setMask(roundedRegion(rect(), radius));
}

void MenuBarContent::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        hide();
    else
        QWidget::keyPressEvent(event);
}

void MenuBarContent::contextMenuEvent(QContextMenuEvent *event)
{
    m_menu = popUpActions(*this, event->globalPos());
    if (!m_menu)
        return;
    connect(m_menu, &QMenu::triggered, this, &QWidget::hide);
    const auto hideUnlessActive = [this] {
        if (!isActiveWindow())
            hide();
    };
    connect(m_menu, &QMenu::aboutToHide, this, hideUnlessActive, Qt::QueuedConnection);
}

void MenuBarContent::hideEvent(QHideEvent *event)
{
    m_hiddenAt = m_clock();
    QWidget::hideEvent(event);
    emit closed();
}

bool MenuBarContent::event(QEvent *event)
{
    // A plain window loses the focus to its own menu.
    if (event->type() == QEvent::WindowDeactivate && !m_menu)
        hide();
    return QWidget::event(event);
}

QPoint panelOrigin(const QPoint &anchor, const QSize &size, const QRect &available)
{
    constexpr int gap = 4;
    const QRect room = available.adjusted(screenMargin, screenMargin, -screenMargin, -screenMargin);
    const bool below = anchor.y() < available.center().y();
    const int x = anchor.x() - size.width() / 2;
    const int y = below ? anchor.y() + gap : anchor.y() - gap - size.height();
    // Of a panel that is larger than the screen the upper left part stays visible.
    return {std::max(std::min(x, room.right() + 1 - size.width()), room.left()),
            std::max(std::min(y, room.bottom() + 1 - size.height()), room.top())};
}

} // namespace corvane
