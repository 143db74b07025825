#include "arguments/ProgramRun.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

bool isPython(const QString &program)
{
    return program.startsWith("python"_L1) || program.startsWith("pypy"_L1);
}

bool isNode(const QString &program)
{
    return program == "node"_L1;
}

/// Whether an option of Python takes the next argument as its value.
bool takesValue(const QString &option)
{
    return option == "-W"_L1 || option == "-X"_L1 || option == "--check-hash-based-pycs"_L1;
}

/// Whether short options in one argument, such as "-um", end with that one.
bool endsWithOption(const QString &argument, QChar option)
{
    return argument.startsWith(u'-') && !argument.startsWith("--"_L1) && argument.endsWith(option)
        && std::ranges::all_of(argument.sliced(1), [](QChar c) { return c.isLetter(); });
}

/// Fills in what an interpreter runs.
void readInterpreter(ProgramRun &run, const QStringList &argv)
{
    for (qsizetype i = 1; i < argv.size(); ++i) {
        const QString &argument = argv[i];
        const bool hasNext = i + 1 < argv.size();
        if (!argument.startsWith(u'-') || argument == "-"_L1) {
            run.script = argument;
            run.arguments = argv.sliced(i + 1);
            return;
        }
        if (hasNext && (endsWithOption(argument, u'm') || argument == "--module"_L1)) {
            run.module = argv[i + 1].toLower();
            run.arguments = argv.sliced(i + 2);
            return;
        }
        if (endsWithOption(argument, u'c')) {
            run.arguments = argv.sliced(i + 1); // The code comes first.
            return;
        }
        if (takesValue(argument))
            ++i;
    }
}

} // namespace

bool isCut(const QString &name)
{
    constexpr qsizetype longest = 15; // TASK_COMM_LEN without the closing NUL.
    return name.size() == longest;
}

QString lowerFileName(const QString &path)
{
    return path.sliced(path.lastIndexOf(u'/') + 1).toLower();
}

ProgramRun ProgramRun::of(const ProcessFacts &facts)
{
    ProgramRun run;
    run.name = facts.name.toLower();
    run.program = facts.argv.isEmpty() ? QString() : lowerFileName(facts.argv.first());
    // Torch renames its main thread.
    run.isInterpreter = isPython(run.program) || isNode(run.program) || isPython(run.name)
        || isNode(run.name) || run.name == "pt_main_thread"_L1;
    if (run.isInterpreter)
        readInterpreter(run, facts.argv);
    else
        run.arguments = facts.argv.mid(1);
    return run;
}

QString ProgramRun::scriptName() const
{
    return lowerFileName(script);
}

bool ProgramRun::runs(QLatin1StringView wanted) const
{
    return (isCut(name) && wanted.startsWith(name)) || name == wanted || program == wanted
        || module == wanted || scriptName() == wanted;
}

bool ProgramRun::runsNamedLike(QLatin1StringView beginning) const
{
    const std::array names{name, program, module, scriptName()};
    return std::ranges::any_of(
        names, [beginning](const QString &text) { return text.startsWith(beginning); });
}

} // namespace corvane
