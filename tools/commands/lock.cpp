// vornak lock: the state of the database lock, its repair, and commands under it.
#include "include/vornak.h"
#include "tools/appliance/lock_file.h"
#include "tools/appliance/locked_command.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/json_document.h"
#include "tools/terminal/output.h"
#include "tools/terminal/printable.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <system_error>

namespace vornak::tool {
namespace {

/// None where no process has opened the lock since the system started.
using Lock = std::optional<LockFile>;

const char *stateOf(const Lock &lock)
{
    if (!lock) return "absent";
    return lock->count == 0 ? "held" : "free";
}

/// The state, and what is odd about it.
std::string describe(const Lock &lock)
{
    if (!lock) return "absent, no process has opened it yet";
    const std::string state =
        lock->count <= 1 ? stateOf(lock)
                         : fmt::format("free, but {} processes may hold it at once: it was "
                                       "released too often",
                                       lock->count);
    const std::string owner = describeOwner(*lock);
    return owner.empty() ? state : state + "; " + owner;
}

Json toJson(const Lock &lock)
{
    Json json = documentHead("vornak-lock");
    json.update({{"lock", kLockName},
                 {"state", stateOf(lock)},
                 {"count", nullptr},
                 {"owner", nullptr},
                 {"openToAll", nullptr}});
    if (lock)
        json.update({{"count", lock->count},
                     {"owner", printable(lock->owner)},
                     {"openToAll", lock->isOpenToAll}});
    return json;
}

// Vornak_Mutex_Init() would create the lock that is only to be looked at.
int showStatus(bool asJson)
{
    const Lock lock = lookAtLock();
    writeOut(asJson ? toJson(lock).dump(2) + '\n'
                    : fmt::format("{}: {}\n", kLockName, describe(lock)));
    return kDone;
}

int repair(bool asJson)
{
    const Lock before = lookAtLock();
    if (Vornak_Mutex_Init(0) != 0)
        throw std::system_error(errno, std::generic_category(),
                                std::string("can't open the lock ") + kLockName);
    Vornak_Mutex_Close();
    const Lock after = lookAtLock();
    if (asJson) {
        Json json = toJson(after);
        json["before"] = stateOf(before);
        writeOut(json.dump(2) + '\n');
    } else {
        writeOut(fmt::format("{}: was {}, is {}\n", kLockName, stateOf(before), describe(after)));
    }
    return kDone;
}

void addStatus(CLI::App &lock, int &status)
{
    auto asJson = std::make_shared<bool>(false);
    CLI::App *command = lock.add_subcommand("status", "Tell whether the lock is held");
    command->add_flag("--json", *asJson, "Print a JSON document");
    command->footer("Example:\n  vornak lock status\n\n"
                    "Exit status: 0 shown, whatever the state is; 2 bad usage or the lock can't "
                    "be looked at.\n");
    command->callback([asJson, &status] { status = showStatus(*asJson); });
}

void addRepair(CLI::App &lock, int &status)
{
    auto asJson = std::make_shared<bool>(false);
    CLI::App *command = lock.add_subcommand(
        "repair", "Release a lock whose holder died. Only while no process uses the database: "
                  "a living holder loses the lock, too");
    command->add_flag("--json", *asJson, "Print a JSON document");
    command->footer("Example:\n  vornak lock repair\n\n"
                    "Exit status: 0 the lock is free, 2 bad usage or the lock can't be opened.\n");
    command->callback([asJson, &status] { status = repair(*asJson); });
}

void addRun(CLI::App &lock, int &status)
{
    auto words = std::make_shared<std::vector<std::string>>();
    CLI::App *command = lock.add_subcommand(
        "run", "Run a command while holding the lock, and give it back however the command ends");
    command->add_option("COMMAND", *words, "The command and its arguments, after --")->required();
    command->footer("The exit status is the command's, or 128 and the signal that ended it; 127 "
                    "if there is\nno such command, 126 if it can't be run. A command that takes "
                    "the lock itself waits\nfor ever.\n\n"
                    "Example:\n  vornak lock run -- cp media.db backup/\n");
    command->callback([words, &status] { status = runLocked(*words); });
}

} // namespace

void addLock(CLI::App &app, int &status)
{
    CLI::App *lock = app.add_subcommand("lock", "Look at the lock of the server's database, "
                                                "repair it, or run a command under it");
    lock->require_subcommand(1);
    addStatus(*lock, status);
    addRepair(*lock, status);
    addRun(*lock, status);
    lock->footer("Exit status: 0 done, 2 bad usage or the lock can't be opened; that of run is "
                 "its command's.\n");
}

} // namespace vornak::tool
