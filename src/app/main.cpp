#include "app/CorvaneApp.h"

int main(int argc, char **argv)
{
    return corvane::run(argc, argv);
}
