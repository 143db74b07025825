#pragma once

#include <QRectF>
#include <QString>
#include <QWidget>

#include <vector>

namespace corvane {

/// One text of a painted widget, as a screen reader and a test read it.
struct AccessibleText {
    QString name = {};  ///< What the text tells; empty when it speaks for itself.
    QString value = {}; ///< The text as it is shown, before it is cut to its place.
    QRectF place = {};  ///< In the widget.
};

/// A widget that paints its texts itself and tells them to assistive technology, each as a child
/// with a name and a value. Main thread.
class AccessibleWidget : public QWidget {
    Q_OBJECT

public:
    explicit AccessibleWidget(QWidget *parent = nullptr);

    virtual std::vector<AccessibleText> accessibleTexts() const = 0;

protected:
    /// Tells whoever listens that the text of that place in the list changed.
    void announceText(int index);
};

} // namespace corvane
