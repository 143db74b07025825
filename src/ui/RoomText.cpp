#include "ui/RoomText.h"

#include "ui/ByteFormatter.h"
#include "ui/NumberText.h"

#include <QStringList>

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr std::uint64_t gibibyte = std::uint64_t(1) << 30;
constexpr std::uint64_t smallestModel = gibibyte / 2; ///< Less is no room worth a number.

QString placeText(const ModelRoom &room)
{
    return room.place == ModelRoom::Place::card ? u"on GPU %1"_s.arg(room.gpu) : u"in memory"_s;
}

/// Whole gigabytes from ten on, tenths below: more would claim a precision that nobody has.
QString aboutText(std::uint64_t bytes)
{
    const double number = static_cast<double>(bytes) / static_cast<double>(gibibyte);
    const int digits = number < 10 ? 1 : 0;
    const double step = digits == 1 ? 0.1 : 1;
    QString text = fixedText(std::floor(number / step) * step, digits);
    if (text.endsWith(".0"_L1))
        text.chop(2);
    return text + u" GB"_s;
}

QString bytesText(std::uint64_t bytes)
{
    return ByteFormatter::f().string(bytes);
}

QString usedOf(const ModelRoom &room)
{
    return bytesText(room.used) + u" of "_s + bytesText(room.total);
}

QString freeSentence(const ModelRoom &room)
{
    switch (room.place) {
    case ModelRoom::Place::card:
        return u"GPU %1 has %2 in use, so that %3 are free."_s.arg(room.gpu).arg(
            usedOf(room), bytesText(room.free));
    case ModelRoom::Place::unified:
        return u"The GPU has %1 in use that it may have of the memory; %2 are free there and in "
               "the memory as a whole."_s.arg(usedOf(room), bytesText(room.free));
    case ModelRoom::Place::memory:
        break;
    }
    const QString available = u"Programs can take %1 without swapping (MemAvailable)."_s.arg(
        bytesText(room.free - room.ownFree));
    if (room.ownFree == 0)
        return available;
    return available + u"\nThe GPU has %1 of its own that are free."_s.arg(bytesText(room.ownFree));
}

} // namespace

QString roomText(const ModelRoom &room)
{
    if (room.isUnderPressure)
        return u"Memory is under pressure"_s;
    if (room.bytes < smallestModel)
        return u"No room for a model "_s + placeText(room);
    return u"Room for a model of about %1 %2"_s.arg(aboutText(room.bytes), placeText(room));
}

QString roomReckoning(const ModelRoom &room)
{
    QStringList sentences;
    if (room.isUnderPressure)
        sentences.append(u"The system is short of memory: another model would slow down "
                         "everything that runs."_s);
    sentences.append(freeSentence(room));
    sentences.append(u"%1 of it are left to the model's context and the system."_s.arg(
        bytesText(leftToContext)));
    if (room.place == ModelRoom::Place::card)
        sentences.append(u"Of several cards, the one with the most room counts."_s);
    return sentences.join(u'\n');
}

} // namespace corvane
