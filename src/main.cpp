#include "server/runserver.h"

#include <cstdio>
#include <exception>

// The executable only starts the server; an exception that escapes it is a broken invariant,
// reported on standard error before the process ends with status 3.
int main(int argc, char **argv)
{
    try {
        return fb::app::runServer(argc, argv);
    } catch (const std::exception &e) {
        std::fprintf(stderr, "fablery-mcp: fatal: %s\n", e.what());
    } catch (...) {
        std::fprintf(stderr, "fablery-mcp: fatal: unknown error\n");
    }
    std::fflush(stderr);
    return 3;
}
