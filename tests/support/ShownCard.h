#pragma once

#include "controls/AccessibleWidget.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace corvane::test {

/// A card on the screen, and its accessible texts.
template <typename CardType>
struct ShownCard {
    template <typename... Arguments>
    explicit ShownCard(const QSize &size, Arguments &&...arguments)
        : card(std::forward<Arguments>(arguments)...)
    {
        card.resize(size);
        card.QWidget::show();
    }

    QStringList values() const
    {
        QStringList values;
        for (const AccessibleText &text : card.accessibleTexts())
            values.append(text.value);
        return values;
    }

    /// The text with that name; empty if there is none.
    AccessibleText text(const QString &name) const
    {
        const std::vector<AccessibleText> texts = card.accessibleTexts();
        const auto found = std::ranges::find(texts, name, &AccessibleText::name);
        return found == texts.end() ? AccessibleText() : *found;
    }

    /// A row of the card's list.
    AccessibleText row(std::size_t index) const { return card.list()->accessibleTexts()[index]; }

    CardType card;
};

} // namespace corvane::test
