#pragma once

#include <QAccessible>
#include <QRectF>
#include <QString>
#include <QWidget>

#include <vector>

namespace corvane {

/// One text of a painted widget, as a screen reader and a test read it.
struct AccessibleText {
    QString name = {};        ///< What the value means; empty when the value needs no name.
    QString value = {};       ///< The whole text, even where the widget shows it cut.
    QRectF place = {};        ///< In the widget.
    QString description = {}; ///< What a tool tip says of it; may be empty.
};

/// A widget that paints what it shows itself and gives it to assistive technology: its texts as
/// children with a name and a value, or a value of its own. Main thread.
class AccessibleWidget : public QWidget {
    Q_OBJECT

public:
    explicit AccessibleWidget(QWidget *parent = nullptr,
                              QAccessible::Role role = QAccessible::Grouping);

    QAccessible::Role accessibleRole() const { return m_role; }

    virtual std::vector<AccessibleText> accessibleTexts() const { return {}; }

    /// The value of the widget as a whole, such as a chart's; empty: none.
    virtual QString accessibleValue() const { return {}; }

protected:
    /// Notifies a screen reader that the text of that index changed.
    void announceText(int index);

    /// Notifies a screen reader if the value changed. Without one the value is not even made.
    void announceValue();

private:
    QAccessible::Role m_role;
    QString m_announcedValue;
};

} // namespace corvane
