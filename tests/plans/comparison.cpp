#include "tests/plans/comparison.h"

#include "engine/pool/open_engine.h"
#include "tests/engine/support.h"

#include <algorithm>
#include <memory>
#include <regex>
#include <stdexcept>

namespace engine::test {

namespace {

constexpr int listed = 50; ///< waybill numbers in a list
constexpr double tolerance = 1.2;

/// What a statement costs that finds nothing: pages of PostgreSQL's catalogue, steps that open a table.
constexpr std::int64_t constantWork = 8000;

constexpr std::string_view ofDay = "scan_site='北京' and scan_date between to_date('2026-03-13 00:00:00','yyyy-mm-dd hh24:mi:ss')"
                                   " and to_date('2026-03-14 23:59:59','yyyy-mm-dd hh24:mi:ss')";

/// Numbers that were sent from 北京 and arrived there, so that lists find something.
std::string realNumbers(const std::string &url)
{
    const auto packet = openEngine(url)->query("select distinct bill_code from tab_scan_come where " + std::string(ofDay)
            + " and bill_code in (select bill_code from tab_scan_send where scan_site='北京') order by bill_code",
        { .rowLimit = listed });
    std::string numbers;
    for (std::size_t row = 0; row < packet->rowCount(); ++row)
        numbers += (row == 0 ? "'" : ",'") + cell(packet, 0, row) + "'";
    return numbers;
}

std::string withValues(const std::string &sql, const std::string &numbers)
{
    static const std::regex centre("((scan_site|sign_site_center) *= *)'\\{\\w+\\}'", std::regex::icase);
    static const std::regex outlet("(record_site *= *)'\\{\\w+\\}'", std::regex::icase);
    static const std::regex clicked(" and +[\\w.]+ *= *'\\{\\w+\\}'", std::regex::icase);
    static const std::regex list("(bill_code +in *\\()('[0-9]+'(,'[0-9]+')*)\\)", std::regex::icase);
    const std::string located = std::regex_replace(std::regex_replace(sql, centre, "$1'北京'"), outlet, "$1'北京朝阳'");
    return std::regex_replace(std::regex_replace(located, clicked, ""), list, "$1" + numbers + ")");
}

} // namespace

bool Compared::growsTooFast(double growth) const
{
    const double returned = double(large.rows + 1) / double(small.rows + 1);
    const auto allowed = std::int64_t(tolerance * double(small.work) * std::max(growth, returned)) + constantWork;
    return large.work > allowed;
}

double growthOfDay(const std::string &small, const std::string &large)
{
    const auto scans = [](const std::string &url) {
        return std::stod(cell(openEngine(url)->query("select count(*) from tab_scan_come where " + std::string(ofDay)), 0, 0));
    };
    return scans(large) / scans(small);
}

std::vector<Compared> compare(const std::string &small, const std::string &large, Sequential scans)
{
    const std::pair<std::string, std::unique_ptr<PlanReader>> sides[]
        = { { realNumbers(small), openPlanReader(small, scans) }, { realNumbers(large), openPlanReader(large, scans) } };
    std::vector<Compared> compared;
    for (ScreenStatement &statement : screenStatements()) {
        if (statement.isRefused)
            continue;
        Compared &result = compared.emplace_back(Compared { std::move(statement), {}, {}, {} });
        try {
            result.small = sides[0].second->read(withValues(result.statement.sql, sides[0].first));
            result.large = sides[1].second->read(withValues(result.statement.sql, sides[1].first));
        } catch (const std::exception &error) {
            result.error = error.what();
        }
    }
    return compared;
}

} // namespace engine::test
