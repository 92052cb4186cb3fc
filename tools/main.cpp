// vornak: what a player takes of a media file, and why not the rest.
#include "exit_status.h"
#include "subcommands.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <fmt/format.h>

namespace vornak::tool {
namespace {

constexpr AddSubcommand s_Subcommands[] = {nullptr}; // in the order of the help text

int run(int argc, char **argv)
{
    CLI::App app{"Says what a DLNA player takes of a media file as it is, what must be "
                 "transcoded, and why"};
    app.require_subcommand(1);
    int status = kDone;
    for (const AddSubcommand add : s_Subcommands)
        if (add) add(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? kDone : kUnusable;
    }
    return status;
}

} // namespace
} // namespace vornak::tool

int main(int argc, char **argv)
{
    try {
        return vornak::tool::run(argc, argv);
    } catch (const std::exception &error) {
        fmt::print(stderr, "vornak: {}\n", error.what());
        return vornak::tool::kUnusable;
    }
}
