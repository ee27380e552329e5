#pragma once

#include <memory>
#include <string>
#include <vector>

/// Another program that runs as long as this lives.
class ChildProcess {
public:
    /// The first argument is the program. Its standard error goes with ours. Throws std::runtime_error.
    explicit ChildProcess(const std::vector<std::string> &arguments);
    ChildProcess(const ChildProcess &) = delete;
    ~ChildProcess();

    /// The next line of its standard output; empty at the end.
    std::string readLine();
    /// Ends it without a chance to clean up.
    void kill();
    /// Asks it to end.
    void terminate();
    /// Holds it, and lets it go on.
    void pause();
    void resume();
    /// Waits for its end and returns its exit code, -1 when it was killed.
    int wait();

private:
    struct Process;
    std::unique_ptr<Process> m_process;
};
