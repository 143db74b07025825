#pragma once

#include <QAbstractButton>
#include <QPointer>
#include <QRectF>

#include <functional>
#include <utility>

namespace corvane {

class InfoPopover;

/// What an info button explains.
struct InfoText {
    QString title = {};
    QString text = {}; ///< Inline Markdown: bold, italics, code.

    friend bool operator==(const InfoText &, const InfoText &) = default;
};

/// The small "info.circle" in the header of a card; a click opens or closes a popover that explains
/// the card. The whole square of the button takes clicks. Main thread.
class InfoButton : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int side = 20; ///< Width and height of the square that takes clicks.

    /// Place of the icon in the button, as the header aligns it.
    static constexpr QRectF glyph() { return {4, 3.5, 13, 13}; }

    /// The square centred on the glyph, to which the popover points.
    static constexpr QRectF clickArea() { return {0.5, 0, side, side}; }

    explicit InfoButton(const InfoText &info, QWidget *parent = nullptr);
    ~InfoButton() override;

    const InfoText &info() const { return m_info; }

    /// Returns what is said of the moment, below the explanation. Asked when the popover opens.
    using Supplement = std::function<QString()>;
    void setSupplement(Supplement supplement) { m_supplement = std::move(supplement); }

    /// Another explanation; an open popover closes. Does nothing if it is the same.
    void setInfo(const InfoText &info);

    /// Null while the popover is closed.
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

    Supplement m_supplement; ///< May be empty.
    InfoText m_info;
    QPointer<InfoPopover> m_popover; ///< A child of the window, which may delete it first.
};

} // namespace corvane
