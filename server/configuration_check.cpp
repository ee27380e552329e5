#include "server/configuration_check.h"

#include "engine/check/database_check.h"
#include "engine/pool/open_engine.h"
#include "server/account_query.h"
#include "server/base/files.h"
#include "server/tls/tls_context.h"
#include "server/users/account_table.h"
#include "server/users/user_file.h"

namespace server {

namespace fs = std::filesystem;

void checkFiles(const Configuration &configuration)
{
    makeTlsContext(configuration.certificate.string(), configuration.privateKey.string());
    if (configuration.accounts.query.empty())
        readUsers(configuration.users);
    if (configuration.auditLog.empty())
        return;
    const fs::path folder = fs::absolute(configuration.auditLog).parent_path(); // of a bare name, too
    if (!fs::is_directory(folder))
        throw std::runtime_error("审计日志的目录 " + folder.string() + " 不存在，请先建立它");
}

void checkSecrets(const Configuration &configuration)
{
    if (!configuration.tokenKeyFile.empty() && readersOf(configuration.tokenKeyFile) == Readers::Everyone)
        throw std::runtime_error("令牌密钥文件 " + configuration.tokenKeyFile.string()
            + " 别人也能读取，谁读到它就能冒充任何用户；请执行 chmod 600 " + configuration.tokenKeyFile.string() + "，并更换密钥");
}

namespace {

std::string unusable(const DatabaseConfiguration &database, const std::exception &error)
{
    return "数据库“" + database.name + "”不能使用：" + error.what();
}

std::vector<std::string> faultsOf(const DatabaseConfiguration &database)
{
    std::vector<std::string> faults = engine::databaseFaults(*engine::openEngine(database.url, { 1, database.tables, database.rules }));
    for (std::string &fault : faults)
        fault = "数据库“" + database.name + "”" + fault;
    return faults;
}

} // namespace

std::vector<std::string> databaseFaults(const Configuration &configuration)
{
    std::vector<std::string> faults;
    for (const DatabaseConfiguration &database : configuration.databases) {
        try {
            const std::vector<std::string> found = faultsOf(database);
            faults.insert(faults.end(), found.begin(), found.end());
        } catch (const std::exception &error) {
            faults.push_back(unusable(database, error));
        }
    }
    return faults;
}

void checkDatabases(const Configuration &configuration)
{
    for (const DatabaseConfiguration &database : configuration.databases) {
        try {
            engine::openEngine(database.url, { 1, database.tables, database.rules });
            for (const std::string &url : database.replicas)
                engine::openEngine(url, { 1, database.tables, database.rules });
        } catch (const std::exception &error) {
            throw std::runtime_error(unusable(database, error));
        }
    }
    if (configuration.accounts.query.empty())
        return;
    std::string faults;
    accountsOf(*AccountQuery(configuration).ask({}), faults);
    if (!faults.empty())
        throw std::runtime_error(faults);
}

} // namespace server
