#include "server/demo_server.h"

#include "engine/pool/open_engine.h"
#include "server/base/files.h"
#include "server/demo_rules.h"
#include "server/tls/certificate.h"
#include "server/users/password.h"
#include "server/users/token.h"
#include "server/users/user_file.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>

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

struct DemoAccount {
    std::string_view name;
    std::string_view words;
    std::vector<std::pair<std::string_view, std::string_view>> fields;
};

constexpr std::string_view branchScreens = "frm_ScanContrast=110,frm_GuestSignQuery,frm_ManCome=100,frm_ManSend=100,frm_SendNextUnCome,"
                                           "frm_ComeDispContrast,frm_RecSendContrast,frm_BillContrastScan,frm_MonthSendBill";

const DemoAccount demoAccounts[] = {
    { "branch", "分部，只看本网点",
        { { "site", "北京朝阳" }, { "employee_name", "分部演示" }, { "employee_code", "D1" }, { "screens", branchScreens } } },
    { "region", "片区，看所属的几个网点",
        { { "site", "北京市内部" }, { "sites", "北京朝阳,北京国贸,北京望京,北京东城,北京通州,北京海淀" }, { "employee_name", "片区演示" },
            { "employee_code", "D2" } } },
    { "centre", "总部，看全部网点",
        { { "site", "北京" }, { "sites", "*" }, { "row_rules", "off" }, { "employee_name", "总部演示" }, { "employee_code", "D3" } } },
};

std::string textOf(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

/// A secret that the file holds for the next start.
std::string keptSecret(const fs::path &path, std::size_t bytes)
{
    std::string secret = textOf(path);
    if (secret.size() == 2 * bytes)
        return secret;
    secret = randomHex(bytes);
    replaceFile(path, secret);
    return secret;
}

/// The clients trust the certificate itself, so it is renewed only when it would soon end.
void keepCertificate(const fs::path &certificate, const fs::path &key)
{
    constexpr auto keptFor = std::chrono::days(180);
    std::error_code missing;
    const auto made = fs::last_write_time(certificate, missing);
    if (missing || !fs::exists(key) || fs::file_time_type::clock::now() - made > keptFor)
        makeLocalCertificate(certificate, key);
}

/// Any database can be shown; the rules are for those of the demo network.
bool isDemoNetwork(const std::string &url)
try {
    engine::openEngine(url, { .connections = 1 })->query("select a.bill_code from TAB_BILL_STATUS a where a.bill_code=''");
    return true;
} catch (const engine::Error &error) {
    return error.failure() != engine::Failure::Refused;
}

Account accountOf(const DemoAccount &demo, const std::string &password)
{
    Account account { .hash = hashPassword(password) };
    for (const auto &[field, text] : demo.fields)
        setAccountField(account, field, text);
    return account;
}

} // namespace

DemoServer prepareDemo(const Options &options)
{
    constexpr std::size_t passwordBytes = 5;
    const std::string database = options.database.empty() ? newestDatabase(options.data) : options.database;
    const fs::path folder = options.data / "server";
    fs::create_directories(folder);
    DemoServer demo { .configuration = { .address = "127.0.0.1", .port = options.port } };
    Configuration &configuration = demo.configuration;
    configuration.certificate = folder / "demo.crt";
    configuration.privateKey = folder / "demo.key";
    configuration.users = folder / "users";
    configuration.tokenKey = keptSecret(folder / "token.key", TokenKey::shortestSecret);
    configuration.auditLog = folder / "audit.log";
    configuration.control = fs::absolute(folder / "control");
    configuration.drainTime = {};
    configuration.databases.push_back({ .name = "demo", .url = database });
    if (isDemoNetwork(database))
        configuration.databases.back().rules = demoRules();
    keepCertificate(configuration.certificate, configuration.privateKey);
    Users users;
    for (const DemoAccount &account : demoAccounts) {
        const std::string name(account.name);
        demo.users.push_back({ name, keptSecret(folder / (name + ".password"), passwordBytes), account.words });
        users.emplace(name, accountOf(account, demo.users.back().password));
    }
    writeUsers(configuration.users, users);
    return demo;
}

std::string demoText(const DemoServer &demo, std::uint16_t port)
{
    const std::string address = "https://127.0.0.1:" + std::to_string(port);
    const fs::path folder = demo.configuration.certificate.parent_path();
    const std::string certificate = demo.configuration.certificate.string();
    const std::string curl = "curl -s --cacert " + certificate + " ";
    const DemoUser &centre = demo.users.back();
    std::string text = "演示服务器已经启动：" + address + "\n证书：" + certificate + "（自签名，只用于演示）\n";
    for (const DemoUser &user : demo.users)
        text += "用户：" + user.name + "　密码：" + user.password + "　" + std::string(user.words) + "\n";
    text += "\n用客户端登录，密码在 " + (folder / "用户名.password").string() + " 中：\n  kelvara-client --server " + address
        + " --server-certificate " + certificate + " --user branch --password-file " + (folder / "branch.password").string();
    return text + "\n\n试一试：\n  token=$(" + curl + address + "/v1/login -d '{\"user\":\"" + centre.name + "\",\"password\":\""
        + centre.password + "\"}' | sed 's/.*\"token\":\"\\([^\"]*\\)\".*/\\1/')\n  " + curl
        + "-H \"Authorization: Bearer $token\" -H 'Accept: text/csv' " + address
        + "/v1/query \\\n    --data-binary \"select scan_site,count(*) as piece from TAB_SCAN_COME group by scan_site order by 2 desc\"\n\n"
          "看看谁在查询（另开一个终端）：\n  kelvara-server status --control "
        + (folder / "control").string() + "\n\n按 Ctrl+C 停止。\n";
}

} // namespace server
