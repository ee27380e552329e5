#include "tests/support/child_process.h"

#include <csignal>
#include <cstdio>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

struct ChildProcess::Process {
    pid_t id = -1;
    bool hasEnded = false;
    std::FILE *output = nullptr;
};

ChildProcess::ChildProcess(const std::vector<std::string> &arguments)
    : m_process(std::make_unique<Process>())
{
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<char *> pointers;
    for (const std::string &argument : arguments)
        pointers.push_back(const_cast<char *>(argument.c_str()));
    pointers.push_back(nullptr);
    const int result = posix_spawn(&m_process->id, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    m_process->output = fdopen(output[0], "r");
    if (result != 0)
        throw std::runtime_error("cannot start " + arguments[0]);
}

ChildProcess::~ChildProcess()
{
    kill();
    wait();
    std::fclose(m_process->output);
}

std::string ChildProcess::readLine()
{
    std::string line;
    for (int byte = std::fgetc(m_process->output); byte != EOF && byte != '\n'; byte = std::fgetc(m_process->output))
        line += char(byte);
    return line;
}

void ChildProcess::kill()
{
    if (!m_process->hasEnded)
        ::kill(m_process->id, SIGKILL);
}

void ChildProcess::terminate() { ::kill(m_process->id, SIGTERM); }
void ChildProcess::pause() { ::kill(m_process->id, SIGSTOP); }
void ChildProcess::resume() { ::kill(m_process->id, SIGCONT); }

int ChildProcess::wait()
{
    int status = 0;
    if (!m_process->hasEnded)
        waitpid(m_process->id, &status, 0);
    m_process->hasEnded = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
