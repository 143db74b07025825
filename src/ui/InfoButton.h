#pragma once

#include <QAbstractButton>
#include <QPointer>
#include <QRectF>

namespace corvane {

class InfoPopover;

/// What an info button explains.
struct InfoText {
    QString title = {};
    QString text = {}; ///< With inline marks: bold, italics, code.
};

/// The small "info.circle" in a card's header; a click opens and closes a popover that explains the
/// card. Its whole square takes clicks. Main thread.
class InfoButton : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int side = 20; ///< Of the square that takes clicks.

    /// Of the icon. Its right edge and its middle lie where a header wants them; the square lies
    /// around it, on whole points.
    static constexpr QRectF glyph() { return {4, 3.5, 13, 13}; }

    /// The square as it would lie exactly around the glyph; the popover points at it.
    static constexpr QRectF clickArea() { return {0.5, 0, side, side}; }

    explicit InfoButton(const InfoText &info, QWidget *parent = nullptr);
    ~InfoButton() override;

    const InfoText &info() const { return m_info; }
    bool isShowing() const { return !m_popover.isNull(); }

    /// Nothing while it is closed.
    InfoPopover *popover() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void toggle();
    void close();

    InfoText m_info;
    QPointer<InfoPopover> m_popover; ///< A child of the window, which may go first.
};

} // namespace corvane
