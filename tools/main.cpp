// vornak: what a player takes of a media file, and why not the rest.
#include "tools/commands/run_vornak.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <exception>

int main(int argc, char **argv)
{
    using namespace vornak::tool;
    try {
        prepareStandardStreams();
        return runVornak(argc, argv);
    } catch (const std::exception &error) {
        complain(error.what());
        return kUnusable;
    }
}
