#include "server/control.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <stdexcept>

namespace server {

namespace asio = boost::asio;
namespace fs = std::filesystem;
using Json = nlohmann::json;

#if defined(BOOST_ASIO_HAS_LOCAL_SOCKETS)

namespace {

using Local = asio::local::stream_protocol;

constexpr std::size_t longestCommand = 256; ///< bytes
constexpr std::string_view endCommand = "end ";

Json listOf(const RunningStatements &statements)
{
    Json rows = Json::array();
    for (const RunningStatements::Row &row : statements.rows())
        rows.push_back({ { "id", row.id }, { "user", row.user }, { "address", row.address }, { "database", row.database },
            { "state", row.waits ? "waiting" : "running" }, { "milliseconds", row.milliseconds }, { "rows", row.rows },
            { "statement", row.sql } });
    return { { "statements", rows } };
}

Json obey(std::string_view command, Service &service)
{
    if (command == "list")
        return listOf(service.running());
    if (command.starts_with(endCommand))
        return { { "ended", service.running().end(std::string(command.substr(endCommand.size()))) } };
    return { { "error", "unknown command" } };
}

asio::awaitable<void> serve(Local::socket socket, Service &service)
{
    boost::system::error_code error;
    std::string input;
    const std::size_t size = co_await asio::async_read_until(
        socket, asio::dynamic_buffer(input, longestCommand), '\n', asio::redirect_error(asio::use_awaitable, error));
    if (error)
        co_return;
    const std::string answer
        = obey(std::string_view(input).substr(0, size - 1), service).dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    co_await asio::async_write(socket, asio::buffer(answer), asio::redirect_error(asio::use_awaitable, error));
}

bool isServed(asio::io_context &io, const fs::path &path)
{
    boost::system::error_code error;
    Local::socket socket(io);
    socket.connect(Local::endpoint(path.string()), error);
    return !error;
}

} // namespace

struct Control::Socket {
    Local::acceptor acceptor;
    fs::path path;
};

Control::Control(asio::io_context &io, const fs::path &path, Service &service)
try : m_socket(new Socket { Local::acceptor(io), path }) {
    if (isServed(io, path))
        throw std::runtime_error("另一个服务正在使用它");
    fs::remove(path); // of a server that has not ended as it should
    Local::acceptor &acceptor = m_socket->acceptor;
    acceptor.open();
    acceptor.bind(Local::endpoint(path.string()));
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write); // before anybody can connect
    acceptor.listen();
    const auto accept = [](Local::acceptor &from, Service &of) -> asio::awaitable<void> {
        boost::system::error_code error;
        while (error != asio::error::operation_aborted) {
            Local::socket socket = co_await from.async_accept(asio::redirect_error(asio::use_awaitable, error));
            if (!error)
                asio::co_spawn(from.get_executor(), serve(std::move(socket), of), asio::detached);
        }
    };
    asio::co_spawn(io, accept(acceptor, service), asio::detached);
} catch (const std::exception &error) {
    throw std::runtime_error("控制用的文件 " + path.string() + " 不能使用：" + error.what() + "；请检查 control 和目录的权限");
}

Control::~Control()
{
    std::error_code ignored;
    fs::remove(m_socket->path, ignored);
}

std::string askServer(const fs::path &path, const std::string &command)
try {
    asio::io_context io;
    Local::socket socket(io);
    socket.connect(Local::endpoint(path.string()));
    asio::write(socket, asio::buffer(command + "\n"));
    std::string answer;
    boost::system::error_code ended;
    asio::read(socket, asio::dynamic_buffer(answer), ended);
    return answer;
} catch (const boost::system::system_error &error) {
    throw std::runtime_error(
        "连不上服务（" + path.string() + "）：" + error.code().message() + "。请检查服务是否在运行，并用 root 或服务的用户执行本命令");
}

#else

struct Control::Socket { };
Control::Control(asio::io_context &, const fs::path &, Service &)
{
    throw std::runtime_error("这个系统上没有控制用的文件，请去掉 control");
}
Control::~Control() = default;
std::string askServer(const fs::path &, const std::string &) { throw std::runtime_error("这个系统上不能查看正在运行的服务"); }

#endif

} // namespace server
