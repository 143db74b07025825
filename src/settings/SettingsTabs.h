#pragma once

#include <QTabBar>

namespace corvane {

/// The tabs over the settings' pages: an icon above its name each. Arrow keys go from one to the
/// next. Main thread.
class SettingsTabs : public QTabBar {
    Q_OBJECT

public:
    static constexpr int barHeight = 56; ///< With the line below, which its parent paints.

    explicit SettingsTabs(QWidget *parent = nullptr);

    void addTab(const QString &symbol, const QString &name);

protected:
    QSize tabSizeHint(int index) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintTab(QPainter &painter, int index) const;
};

} // namespace corvane
