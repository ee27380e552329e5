#include "server/demo_server.h"

#include "server/demo_rules.h"
#include "server/tls/certificate.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"

#include <algorithm>

namespace server {

namespace fs = std::filesystem;

namespace {

std::string newestDatabase(const fs::path &folder)
{
    std::vector<fs::path> found;
    std::error_code ignored;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, ignored)) {
        if (entry.path().filename().string().starts_with("demo-") && entry.path().extension() == ".db")
            found.push_back(entry.path());
    }
    const fs::path made = folder / "demo-1.db";
    if (found.empty())
        throw std::runtime_error("没有演示数据库。请先运行 kelvara-demo " + made.string() + " 生成一个，或用 --database sqlite:文件 指定");
    return "sqlite:" + std::max_element(found.begin(), found.end())->string();
}

} // namespace

DemoServer prepareDemo(const Options &options)
{
    const std::string database = options.database.empty() ? newestDatabase(options.data) : options.database;
    const fs::path folder = options.data / "server";
    fs::create_directories(folder);
    DemoServer demo { .configuration = { .address = "127.0.0.1", .port = options.port }, .password = randomHex(8) };
    Configuration &configuration = demo.configuration;
    configuration.certificate = folder / "demo.crt";
    configuration.privateKey = folder / "demo.key";
    configuration.users = folder / "users";
    configuration.tokenKey = randomHex(TokenKey::shortestSecret);
    configuration.auditLog = folder / "audit.log";
    configuration.drainTime = {};
    configuration.databases.push_back({ .name = "demo", .url = database, .rules = demoRules() });
    makeLocalCertificate(configuration.certificate, configuration.privateKey);
    writeUsers(configuration.users, { { demo.user, { .hash = hashPassword(demo.password) } } });
    return demo;
}

std::string demoText(const DemoServer &demo, std::uint16_t port)
{
    const std::string address = "https://127.0.0.1:" + std::to_string(port);
    const std::string curl = "curl -s --cacert " + demo.configuration.certificate.string() + " ";
    return "演示服务器已经启动：" + address + "\n用户：" + demo.user + "\n密码：" + demo.password + "\n证书："
        + demo.configuration.certificate.string() + "（自签名，只用于演示）\n\n试一试：\n  token=$(" + curl + address
        + "/v1/login -d '{\"user\":\"" + demo.user + "\",\"password\":\"" + demo.password
        + "\"}' | sed 's/.*\"token\":\"\\([^\"]*\\)\".*/\\1/')\n  " + curl + "-H \"Authorization: Bearer $token\" -H 'Accept: text/csv' "
        + address
        + "/v1/query \\\n    --data-binary \"select scan_site,count(*) as piece from TAB_SCAN_COME group by scan_site order by 2 desc\"\n\n"
          "按 Ctrl+C 停止。\n";
}

} // namespace server
