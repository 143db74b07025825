#pragma once

#include "ui/AccessibleWidget.h"

namespace corvane {

class SettingsNote;

/// A page of the settings: a heading over a group of rows, and what stands below. Owned by the
/// settings window; main thread.
class SettingsPage : public AccessibleWidget {
    Q_OBJECT

public:
    SettingsPage(const QString &heading, int rowCount, QWidget *parent);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    /// Of a row in the group, counted from 0.
    QRect row(int index) const;
    int groupBottom() const;

    /// Places a note of the group's width below `top`; its bottom, or `top` where it is hidden.
    int placeNote(SettingsNote &note, int top) const;

    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_heading;
    const int m_rowCount;
};

} // namespace corvane
