#pragma once

#include "controls/InfoButton.h"

#include <QTest>

namespace corvane::test {

/// A window of the dashboard's smallest size with two info buttons.
struct InfoWindow {
    InfoWindow()
    {
        widget.resize(920, 760);
        first.move(400, 30);
        second.move(870, 300);
        widget.show();
    }

    void press(const QPoint &place)
    {
        QWidget *target = widget.childAt(place);
        QTest::mouseClick(target ? target : &widget, Qt::LeftButton, {},
                          target ? target->mapFrom(&widget, place) : place);
    }

    QWidget widget;
    InfoButton first{{QStringLiteral("First"), QStringLiteral("**Bold** text")}, &widget};
    InfoButton second{{QStringLiteral("Second"), QStringLiteral("a\n\nb")}, &widget};
};

} // namespace corvane::test
