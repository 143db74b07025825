#pragma once

#include <QAbstractButton>

namespace corvane {

/// The push button of the panel and the settings, with an optional icon. Main thread.
class PanelButton : public QAbstractButton {
    Q_OBJECT

public:
    /// `symbol` is the name of the icon; empty: none.
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
