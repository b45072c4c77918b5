#include "server/runserver.h"

namespace fb::app {

int runServer(int, char **)
{
    return 0;
}

} // namespace fb::app
