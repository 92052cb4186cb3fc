// vornak lock: the state of the database lock, its repair, and commands under it.
#include "include/vornak.h"
#include "tools/appliance/locked_command.h"
#include "tools/commands/subcommands.h"
#include "tools/terminal/exit_status.h"
#include "tools/terminal/output.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <system_error>

namespace vornak::tool {
namespace {

constexpr const char *kLockName = "VORNAK_DB_SEM";

/// The lock's count; none where no process has opened it since the system started.
using Count = std::optional<int>;

[[noreturn]] void failFor(const std::string &what)
{
    throw std::system_error(errno, std::generic_category(), what + ' ' + kLockName);
}

// Vornak_Mutex_Init() would create the lock that is only to be looked at.
Count readCount()
{
    sem_t *const lock = sem_open(kLockName, 0);
    if (lock == SEM_FAILED && errno == ENOENT) return std::nullopt;
    if (lock == SEM_FAILED) failFor("can't open the lock");
    int count = 0;
    sem_getvalue(lock, &count);
    sem_close(lock);
    return count;
}

const char *stateOf(Count count)
{
    if (!count) return "absent";
    return *count == 0 ? "held" : "free";
}

/// The state, and what is odd about it.
std::string describe(Count count)
{
    if (!count) return "absent, no process has opened it yet";
    if (*count <= 1) return stateOf(count);
    return fmt::format("free, but {} processes may hold it at once: it was released too often",
                       *count);
}

nlohmann::ordered_json toJson(Count count)
{
    return {{"document", "vornak-lock"},
            {"version", 1},
            {"lock", kLockName},
            {"state", stateOf(count)},
            {"count", count ? nlohmann::ordered_json(*count) : nullptr}};
}

int showStatus(bool asJson)
{
    const Count count = readCount();
    writeOut(asJson ? toJson(count).dump(2) + '\n'
                    : fmt::format("{}: {}\n", kLockName, describe(count)));
    return kDone;
}

int repair(bool asJson)
{
    const Count before = readCount();
    if (Vornak_Mutex_Init(0) != 0) failFor("can't open the lock");
    Vornak_Mutex_Close();
    const Count after = readCount();
    if (asJson) {
        nlohmann::ordered_json json = toJson(after);
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
