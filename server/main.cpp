#include "server/audit_command.h"
#include "server/base/log.h"
#include "server/base/signals.h"
#include "server/base/system.h"
#include "server/configuration_check.h"
#include "server/demo_server.h"
#include "server/options.h"
#include "server/server.h"
#include "server/service.h"
#include "server/status_command.h"
#include "server/user_command.h"

#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using server::Options;

void reload(server::Server &running)
try {
    running.reload();
    server::logLine("已重新读取证书，并重新打开审计日志");
} catch (const std::exception &error) {
    server::logLine(std::string("重新读取失败，仍用原来的：") + error.what());
}

void runUntilStopped(server::Server &running)
{
    server::waitForStop([&running] { reload(running); });
    server::logLine("正在停机，等待正在运行的查询完成");
    running.stop();
    server::logLine("已停机");
}

/// A server that has run so far must still start.
void warnOfSecrets(const server::Configuration &configuration)
try {
    server::checkSecrets(configuration);
} catch (const std::exception &error) {
    server::logLine(std::string("警告：") + error.what());
}

/// Said when the server starts and to whoever logs in, so that it is not the first query that finds out.
void warnOfDatabases(const server::Configuration &configuration, server::Service &service)
{
    const std::vector<std::string> faults = server::databaseFaults(configuration);
    for (const std::string &fault : faults)
        server::logLine("警告：" + fault);
    service.setDatabaseFaults(faults);
}

void serve(const Options &options)
{
    const server::Configuration configuration = server::readConfiguration(options.config);
    server::checkFiles(configuration);
    warnOfSecrets(configuration);
    server::Server running(configuration);
    server::logLine("正在 " + configuration.address + ":" + std::to_string(running.port()) + " 上提供服务");
    const std::jthread warning([&] { warnOfDatabases(configuration, running.service()); }); // a database may let it wait
    runUntilStopped(running);
}

void checkConfiguration(const Options &options)
{
    const server::Configuration configuration = server::readConfiguration(options.config);
    server::checkFiles(configuration);
    server::checkSecrets(configuration);
    server::checkDatabases(configuration);
    std::string lacking;
    for (const std::string &fault : server::databaseFaults(configuration))
        lacking += fault + '\n';
    if (!lacking.empty())
        throw std::runtime_error(lacking + "缺少的表和列可以用视图补上，见 docs/databases.md；不补时，用到它们的窗口不能查询，其余的可以");
    std::cout << "配置文件 " << options.config.string() << " 可以使用" << std::endl;
}

void demonstrate(const Options &options)
{
    const server::DemoServer demo = server::prepareDemo(options);
    server::Server running(demo.configuration);
    std::cout << server::demoText(demo, running.port()) << std::flush;
    runUntilStopped(running);
}

void audit(const Options &options)
{
    const auto log = options.auditLog.empty() ? server::readConfiguration(options.config).auditLog : options.auditLog;
    if (log.empty())
        throw std::runtime_error("配置文件 " + options.config.string() + " 没有写 audit_log，没有审计日志可以显示");
    server::showAudit(log, options, std::cout);
}

void status(const Options &options)
{
    const auto control = options.control.empty() ? server::readConfiguration(options.config).control : options.control;
    if (control.empty())
        throw std::runtime_error(
            "配置文件 " + options.config.string() + " 没有写 control，请写上并重新启动服务，如 control = /run/kelvara/control");
    if (options.endedStatement.empty())
        server::showStatus(control, options.asJson, std::cout);
    else
        server::endStatement(control, options.endedStatement, std::cout);
}

void run(const Options &options)
{
    switch (options.mode) {
    case Options::Mode::Help:
        std::cout << server::helpText();
        return;
    case Options::Mode::Version:
        std::cout << "kelvara-server " << KELVARA_VERSION << std::endl;
        return;
    case Options::Mode::Serve:
        return serve(options);
    case Options::Mode::CheckConfig:
        return checkConfiguration(options);
    case Options::Mode::Demo:
        return demonstrate(options);
    case Options::Mode::Audit:
        return audit(options);
    case Options::Mode::Status:
        return status(options);
    case Options::Mode::User:
        return server::runUserCommand(options, std::cin, std::cout);
    }
}

} // namespace

int main(int argc, char **argv)
{
    try {
        server::raiseFileLimit();
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        run(server::readOptions(arguments));
        return 0;
    } catch (const std::exception &error) {
        server::logLine(error.what());
        return 1;
    }
}
