#include "arguments/ModelArgument.h"
#include "processes/AIProcessDetector.h"
#include "processes/SecondRules.h"

#include <cstddef>

using namespace corvane;

/// The first line is the process name, each further one an argument.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    QStringList argv = text.split(u'\n');
    const QString name = argv.takeFirst();
    AIProcessDetector::nameLooksRelevant(name);
    const auto match = AIProcessDetector::classify(name, argv);
    if (match && match->framework == AIFramework::lmStudio && match->model)
        __builtin_trap();
    const auto found = recognise({.name = name, .executable = argv.value(0), .argv = argv});
    if (found && found->isPart && found->model)
        __builtin_trap();
    for (const QString &argument : argv) {
        modelNameOf(argument);
        saysNothing(argument);
        if (AIProcessDetector::basename(argument).size() > argument.size())
            __builtin_trap();
    }
    return 0;
}
