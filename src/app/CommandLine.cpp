#include "app/CommandLine.h"

#include <QCommandLineParser>

#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct NamedForm {
    QLatin1StringView name;
    FiguresForm form;
};

constexpr std::array namedForms{NamedForm{"once"_L1, FiguresForm::once},
                                NamedForm{"stream"_L1, FiguresForm::stream},
                                NamedForm{"waybar"_L1, FiguresForm::waybar}};

const QCommandLineOption &helpOption()
{
    static const QCommandLineOption option({u"h"_s, u"help"_s}, u"Prints this help."_s);
    return option;
}

const QCommandLineOption &versionOption()
{
    static const QCommandLineOption option({u"v"_s, u"version"_s}, u"Prints the version."_s);
    return option;
}

const QCommandLineOption &backgroundOption()
{
    static const QCommandLineOption option(
        u"background"_s, u"Starts without ever opening a window by itself, as at login."_s);
    return option;
}

const QCommandLineOption &figuresOption()
{
    static const QCommandLineOption option(
        u"json"_s,
        u"Prints the figures as JSON and shows nothing: \"once\" after a second (also without a "
        "form), \"stream\" each second, \"waybar\" each second for a bar's custom module."_s,
        u"form"_s);
    return option;
}

void addOptions(QCommandLineParser &parser)
{
    parser.addOptions({helpOption(), versionOption(), backgroundOption(), figuresOption()});
}

/// Without the window system's words, and with the form that `--json` alone means.
QStringList ownArguments(const QStringList &arguments)
{
    QStringList own;
    bool followsForeign = false;
    for (const QString &argument : arguments) {
        const bool isOption = argument.startsWith(u'-');
        const bool isForeign = isOption && !argument.startsWith("--"_L1) && argument.size() > 2;
        if (argument == "--json"_L1)
            own.append(u"--json=once"_s);
        else if (!isForeign && (isOption || !followsForeign))
            own.append(argument);
        followsForeign = isForeign;
    }
    return own;
}

} // namespace

CommandLine parsedCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    CommandLine line;
    if (!parser.parse(ownArguments(arguments)))
        line.error = parser.errorText();
    else if (!parser.positionalArguments().isEmpty())
        line.error = u"Unexpected argument '%1'."_s.arg(parser.positionalArguments().constFirst());
    line.isBackground = parser.isSet(backgroundOption());
    line.asksForHelp = parser.isSet(helpOption());
    line.asksForVersion = parser.isSet(versionOption());
    if (!line.error.isEmpty() || !parser.isSet(figuresOption()))
        return line;

    const QString name = parser.value(figuresOption());
    const auto *const named = std::ranges::find(namedForms, name, &NamedForm::name);
    if (named != namedForms.end())
        line.figures = named->form;
    else
        line.error = u"Unknown form '%1' of --json: once, stream or waybar."_s.arg(name);
    return line;
}

QString helpText()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"System monitor in the menu bar: memory, GPU, watts and local AI models."_s);
    addOptions(parser);
    // The parser has no word for a value that may be left out.
    return parser.helpText().replace("--json <form>"_L1, "--json[=form]"_L1);
}

} // namespace corvane
