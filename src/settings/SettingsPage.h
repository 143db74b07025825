#pragma once

#include "controls/AccessibleWidget.h"

namespace corvane {

class SettingsNote;

/// A page of the settings: a heading, a group of rows, and notes below them. Owned by the settings
/// window; main thread.
class SettingsPage : public AccessibleWidget {
    Q_OBJECT

public:
    SettingsPage(const QString &heading, int rowCount, QWidget *parent);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    /// Rectangle of a row in the group, counted from 0.
    QRect row(int index) const;
    int groupBottom() const;

    /// Places a note of the group's width below `top`. Returns its bottom, or `top` if it is
    /// hidden.
    int placeNote(SettingsNote &note, int top) const;

    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_heading;
    const int m_rowCount;
};

} // namespace corvane
