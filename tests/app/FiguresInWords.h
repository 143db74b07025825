#pragma once

#include <QJsonObject>
#include <QMap>
#include <QStringList>

namespace corvane::test {

/// What printed figures say in the dashboard's words: for each card, by its title, the names and
/// values of its texts, such as "Load: 25%". "Corvane" is the header. What figures do not tell has
/// no words.
QMap<QString, QStringList> figuresInWords(const QJsonObject &figures);

/// The names and values of one card of the dashboard that are figures: without words of absence and
/// without what is no figure of the present second.
QStringList figuresOfCard(const QStringList &texts);

} // namespace corvane::test
