#include "server/base/metrics.h"

#include "server/base/json.h"

#include <algorithm>
#include <sstream>

namespace server {

namespace {

void writeHead(std::ostream &out, const char *name, const char *type, const char *help)
{
    out << "# HELP " << name << ' ' << help << "\n# TYPE " << name << ' ' << type << '\n';
}

template <class Number>
void writeSingle(std::ostream &out, const char *name, const char *type, const char *help, Number value)
{
    writeHead(out, name, type, help);
    out << name << ' ' << value << '\n';
}

} // namespace

void Metrics::countRequest(int status)
{
    const std::lock_guard lock(m_mutex);
    ++m_requests[status];
}

void Metrics::countStatement(std::chrono::microseconds duration, std::int64_t rows, std::uint64_t bytes)
{
    const double seconds = std::chrono::duration<double>(duration).count();
    const auto *const bound = std::lower_bound(bounds.begin(), bounds.end(), seconds);
    const std::lock_guard lock(m_mutex);
    ++m_durations[std::size_t(bound - bounds.begin())];
    m_seconds += seconds;
    m_rows += std::uint64_t(rows);
    m_bytes += bytes;
}

std::string Metrics::text(const std::map<std::string, Load> &databases, const std::vector<Address> &addresses) const
{
    std::ostringstream out;
    const std::lock_guard lock(m_mutex);
    writeHead(out, "kelvara_requests_total", "counter", "Answered requests by status code.");
    for (const auto &[status, count] : m_requests)
        out << "kelvara_requests_total{code=\"" << status << "\"} " << count << '\n';
    writeHead(out, "kelvara_statements_running", "gauge", "Statements that run.");
    for (const auto &[name, load] : databases)
        out << "kelvara_statements_running{database=" << jsonText(name) << "} " << load.running << '\n';
    writeHead(out, "kelvara_statements_waiting", "gauge", "Statements that wait for their turn.");
    for (const auto &[name, load] : databases)
        out << "kelvara_statements_waiting{database=" << jsonText(name) << "} " << load.waiting << '\n';
    const auto writeAddresses = [&](const char *name, const char *help, const auto &value) {
        writeHead(out, name, "gauge", help);
        for (const Address &address : addresses)
            out << name << "{database=" << jsonText(address.database) << ",address=\"" << address.number << "\"} " << value(address)
                << '\n';
    };
    writeAddresses(
        "kelvara_address_up", "1 while the address of the database can be used.", [](const Address &at) { return int(at.isUp); });
    writeAddresses("kelvara_address_running", "Statements that run there.", [](const Address &at) { return at.running; });
    writeAddresses(
        "kelvara_address_lag_seconds", "How far it lies behind, where there are several.", [](const Address &at) { return at.lag; });
    writeSingle(out, "kelvara_rows_total", "counter", "Rows read for clients.", m_rows);
    writeSingle(out, "kelvara_result_bytes_total", "counter", "Bytes of results, before encryption.", m_bytes);
    writeSingle(out, "kelvara_connections", "gauge", "Open connections.", connections.load());
    writeSingle(out, "kelvara_connections_refused_total", "counter", "Connections refused at a limit.", refusedConnections.load());
    writeSingle(out, "kelvara_login_failures_total", "counter", "Logins with a wrong name or password.", loginFailures.load());
    writeSingle(out, "kelvara_password_checks_total", "counter", "Passwords that were hashed to be compared.", passwordChecks.load());
    writeSingle(
        out, "kelvara_users_unreadable", "gauge", "1 while the accounts cannot be read and everybody is refused.", usersUnreadable.load());
    writeSingle(out, "kelvara_accounts_overdue_seconds", "gauge", "Time for which the table of accounts could not be read.",
        accountsOverdue.load());
    writeHead(out, "kelvara_statement_seconds", "histogram", "Time from the request to the last byte of the result.");
    std::uint64_t below = 0;
    for (std::size_t at = 0; at < bounds.size(); ++at)
        out << "kelvara_statement_seconds_bucket{le=\"" << bounds[at] << "\"} " << (below += m_durations[at]) << '\n';
    below += m_durations.back();
    out << "kelvara_statement_seconds_bucket{le=\"+Inf\"} " << below << "\nkelvara_statement_seconds_sum " << m_seconds
        << "\nkelvara_statement_seconds_count " << below << '\n';
    return out.str();
}

} // namespace server
