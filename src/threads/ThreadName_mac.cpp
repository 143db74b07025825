#include "threads/ThreadName.h"

#include <pthread.h>

namespace corvane {

void nameThread(const std::string &name)
{
    pthread_setname_np(name.c_str());
}

} // namespace corvane
