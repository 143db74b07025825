#include "app/CorvaneApp.h"
#include "threads/BackgroundJob.h"

#include <unistd.h>

int main(int argc, char **argv)
{
    const int status = corvane::run(argc, argv);
    if (corvane::isRunningBackgroundJobs())
        _exit(status);
    return status;
}
