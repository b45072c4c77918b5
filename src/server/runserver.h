#pragma once

namespace fb::app {

// The whole life of the process: set up the headless application object, open the project
// named by the one argument, register every tool family and serve standard input until it
// ends. Returns the process exit status.
int runServer(int argc, char **argv);

} // namespace fb::app
