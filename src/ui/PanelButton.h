#pragma once

#include <QAbstractButton>

namespace corvane {

/// A push button with an optional icon, as the panel and the settings show it. Main thread.
class PanelButton : public QAbstractButton {
    Q_OBJECT

public:
    /// `symbol` names the icon; empty: none.
    explicit PanelButton(const QString &text, const QString &symbol = {},
                         QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    double contentWidth() const;

    QString m_symbol;
};

} // namespace corvane
