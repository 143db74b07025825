#pragma once

#include <QTabBar>

namespace corvane {

/// The tabs above the settings' pages, each an icon above its name. Arrow keys select the next one.
/// Main thread.
class SettingsTabs : public QTabBar {
    Q_OBJECT

public:
    static constexpr int barHeight =
        56; ///< Includes the line below the bar, which its parent paints.

    explicit SettingsTabs(QWidget *parent = nullptr);

    void addTab(const QString &symbol, const QString &name);

protected:
    QSize tabSizeHint(int index) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintTab(QPainter &painter, int index) const;
};

} // namespace corvane
