// Processes that the tool starts: a program, or work of its own beside it.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vornak::tool {

constexpr int kSignalled = 128; ///< added to the number of the signal that ended a process, as the
                                ///< shell does

/// Both ends are closed on exec. Throws std::system_error.
class Pipe {
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int readEnd() const { return ends_[0]; }
    int writeEnd() const { return ends_[1]; }
    void closeReadEnd() { closeEnd(0); }
    void closeWriteEnd() { closeEnd(1); }

    /// Closes the end to write to, and reads until all others have.
    std::string readAll();

private:
    void closeEnd(int end);

    int ends_[2] = {-1, -1};
};

/// What becomes of a child when the tool is killed.
enum class Orphan { GoesOn, IsKilled };

/// Owns a process: one that still runs is killed with it.
class Child {
public:
    /// Runs `work` in a copy of the tool, which must have one thread; what it returns is the exit
    /// status, what it throws is complained of. Throws std::system_error.
    Child(const std::function<int()> &work, Orphan orphan);
    ~Child();
    Child(Child &&other) noexcept;
    Child &operator=(Child &&) = delete;

    void send(int signal) const;

    /// Doesn't wait.
    bool hasEnded();

    /// Waits for its end.
    void wait();

    /// The signal that ended it, or 0.
    int signal() const;

    /// Exit status, or kSignalled and the signal that ended it.
    int status() const;

private:
    bool reap(int options);

    pid_t process_;
    int end_ = 0; ///< as from waitpid()
};

/// PATH as far as it names folders that nobody but root fills. It may be somebody else's: su and
/// sudo keep it, or may.
std::string pathForRoot();

constexpr int kNothing = -1; ///< a descriptor on which nothing comes and where all is lost

/**
 * Runs `command`, the program first, which is looked up in PATH, for root in pathForRoot(). No
 * signal is held for it; those that the tool's caller has it ignore stay so.
 * @param descriptors  what becomes its descriptors 0, 1, 2 and so on
 * Throws std::system_error, "can't run PROGRAM: REASON", with the reason as its code.
 */
Child startProgram(const std::vector<std::string> &command, std::span<const int> descriptors,
                   Orphan orphan);

} // namespace vornak::tool
