#include "updates/UpdaterManager.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <cstdio>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

void waitForFinding(UpdaterManager &updates)
{
    QEventLoop loop;
    QObject::connect(&updates, &UpdaterManager::findingChanged, &loop, &QEventLoop::quit);
    loop.exec();
}

void print(const char *step, const UpdaterManager &updates)
{
    std::printf("%s: %s: %s\n", step, updates.canCheck() ? "can check" : "cannot check",
                qUtf8Printable(updates.finding().value_or(u"nothing"_s)));
}

} // namespace

/// Does what opening the settings does, then what "Check Now" does if it is enabled. Prints the
/// finding after each.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"update_check"_s);
    UpdaterManager updates;
    updates.refresh();
    waitForFinding(updates);
    print("shown", updates);
    if (!updates.canCheck())
        return 0;
    updates.checkForUpdates();
    waitForFinding(updates);
    print("checked", updates);
    return 0;
}
