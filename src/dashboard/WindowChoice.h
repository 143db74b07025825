#pragma once

#include "records/HistoryWindow.h"

#include <QAbstractButton>
#include <QWidget>

#include <array>

namespace corvane {

/// The words of a window of time: "1 min", "10 min", "1 hour", "1 day".
QString windowName(HistoryWindow window);

/// Chooses how much history the charts show: a row of four buttons, one of which is chosen. Tab and
/// the arrow keys reach each, Space chooses it. Main thread.
class WindowChoice : public QWidget {
    Q_OBJECT

public:
    explicit WindowChoice(QWidget *parent = nullptr);

    HistoryWindow chosen() const;

    /// Shows another choice without emitting anything.
    void setChosen(HistoryWindow window);

    QSize sizeHint() const override;

    QWidget *lastInTabOrder() const;

signals:
    void chosenByUser(corvane::HistoryWindow window);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::array<QAbstractButton *, allHistoryWindows.size()> m_buttons = {};
};

} // namespace corvane
