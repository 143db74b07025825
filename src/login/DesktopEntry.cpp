#include "login/DesktopEntry.h"

#include <QStringDecoder>

#include <algorithm>

// Two layers of escapes lie over a command: that of any value (\s, \n, \t, \r, \\) and, below it,
// the quoting of its words. A literal dollar sign thus stands in the file as "\\$". Percent signs
// start field codes and are doubled.

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto groupName = "[Desktop Entry]"_L1;

/// A word with one of these needs quotes.
constexpr auto reserved = " \t\n\r\"'\\><~|&;$*?#()`"_L1;

/// These keep their meaning between quotes.
constexpr auto quotedReserved = "\"`$\\"_L1;

/// Other white space may be part of a file's name.
bool isBlank(QChar letter)
{
    return " \t\n\r"_L1.contains(letter);
}

QStringView withoutBlanks(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

/// Runs its first argument that is not an assignment.
constexpr auto envProgram = "/usr/bin/env"_L1;

QString unescaped(QStringView value)
{
    QString text;
    text.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar next = i + 1 < value.size() ? value[i + 1] : QChar();
        const auto code = "sntr\\"_L1.indexOf(next);
        if (value[i] != u'\\' || next.isNull() || code < 0) {
            text += value[i];
            continue;
        }
        text += " \n\t\r\\"_L1[code];
        ++i;
    }
    return text;
}

QString escaped(const QString &text)
{
    QString value = text;
    value.replace(u'\\', u"\\\\"_s);
    value.replace(u'\n', u"\\n"_s);
    value.replace(u'\t', u"\\t"_s);
    value.replace(u'\r', u"\\r"_s);
    // A reader drops blanks at the end of a line.
    if (value.endsWith(u' '))
        value.replace(value.size() - 1, 1, u"\\s"_s);
    return value;
}

QStringList listOf(const QString &value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

/// Takes the quoted part of a word and its quotes; absent if the closing quote is missing.
std::optional<QString> takeQuoted(QStringView &rest)
{
    const QChar quote = rest.front();
    QString text;
    for (qsizetype i = 1; i < rest.size(); ++i) {
        if (rest[i] == quote) {
            rest = rest.mid(i + 1);
            return text;
        }
        const bool isEscape = quote == u'"' && rest[i] == u'\\' && i + 1 < rest.size()
            && quotedReserved.contains(rest[i + 1]);
        if (isEscape)
            ++i;
        text += rest[i];
    }
    return std::nullopt;
}

/// Takes the next word of a command; empty at its end, absent if a quote is not closed.
std::optional<QString> takeWord(QStringView &rest)
{
    rest = withoutBlanks(rest);
    QString word;
    while (!rest.isEmpty() && !isBlank(rest.front())) {
        if (rest.front() == u'"' || rest.front() == u'\'') {
            const auto part = takeQuoted(rest);
            if (!part)
                return std::nullopt;
            word += *part;
            continue;
        }
        if (rest.front() == u'\\' && rest.size() > 1)
            rest = rest.mid(1);
        word += rest.front();
        rest = rest.mid(1);
    }
    return word.replace("%%"_L1, "%"_L1);
}

/// The program that a command runs, directly or through `env`; empty if there is none.
QString programOf(const QString &command)
{
    QStringView rest = command;
    QString word = takeWord(rest).value_or(QString());
    if (word != "env"_L1 && word != envProgram)
        return word;
    do
        word = takeWord(rest).value_or(QString());
    while (word.contains(u'='));
    return word;
}

QString commandOf(const QString &program)
{
    const auto isReserved = [](QChar letter) { return reserved.contains(letter); };
    QString word = program;
    if (std::any_of(word.cbegin(), word.cend(), isReserved)) {
        for (const QChar letter : u"\\\"`$"_s) // The backslash first: the others add more.
            word.replace(letter, u'\\' + QString(letter));
        word = u'"' + word + u'"';
    }
    // Desktops look for the program before they decode "%%", and decode it in arguments.
    const QString wrapper = word.contains(u'%') ? envProgram + u' ' : QString();
    return wrapper + word.replace(u'%', u"%%"_s);
}

void setValue(DesktopEntry &entry, QStringView key, const QString &value)
{
    if (key == "Type"_L1)
        entry.isApplication = value == "Application"_L1;
    else if (key == "Hidden"_L1)
        entry.isHidden = value == "true"_L1;
    else if (key == "X-GNOME-Autostart-enabled"_L1)
        entry.isSwitchedOff = value != "true"_L1;
    else if (key == "OnlyShowIn"_L1)
        entry.onlyShowIn = listOf(value);
    else if (key == "NotShowIn"_L1)
        entry.notShowIn = listOf(value);
    else if (key == "TryExec"_L1)
        entry.tryExec = value;
    else if (key == "Exec"_L1)
        entry.program = programOf(value);
}

} // namespace

std::optional<DesktopEntry> desktopEntry(const QByteArray &bytes)
{
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString text = decode(bytes);
    if (decode.hasError() || text.contains(QChar(u'\0')))
        return std::nullopt;

    std::optional<DesktopEntry> entry;
    bool isInGroup = false;
    for (const QStringView line : QStringTokenizer(text, u'\n')) {
        const QStringView content = withoutBlanks(line);
        if (content.startsWith(u'[')) {
            isInGroup = content == groupName;
            if (isInGroup && !entry)
                entry.emplace();
            continue;
        }
        const auto equals = content.indexOf(u'=');
        if (!isInGroup || equals < 0 || content.startsWith(u'#'))
            continue;
        setValue(*entry, withoutBlanks(content.first(equals)),
                 unescaped(withoutBlanks(content.mid(equals + 1))));
    }
    return entry;
}

bool isStarted(const DesktopEntry &entry, const QStringList &desktops)
{
    if (!entry.isApplication || entry.isHidden || entry.isSwitchedOff || entry.program.isEmpty())
        return false;
    // The first desktop that the entry names decides.
    for (const QString &desktop : desktops) {
        if (entry.onlyShowIn && entry.onlyShowIn->contains(desktop))
            return true;
        if (entry.notShowIn.contains(desktop))
            return false;
    }
    return !entry.onlyShowIn;
}

QStringList currentDesktops()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
}

QByteArray autostartEntry(const QString &program)
{
    const QString text = u"[Desktop Entry]\n"
                         "Type=Application\n"
                         "Name=Corvane\n"
                         "Comment=System monitor\n"
                         "Icon="_s
        + QStringLiteral(CORVANE_IDENTIFIER) + u"\nTryExec="_s + escaped(program) + u"\nExec="_s
        + escaped(commandOf(program) + " --background"_L1)
        + u"\nTerminal=false\nStartupNotify=false\n"_s;
    return text.toUtf8();
}

} // namespace corvane
