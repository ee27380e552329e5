#include "demo/writer.h"

#include "demo/lookups.h"
#include "demo/text.h"

#include <algorithm>

namespace demo {
namespace {

std::string code(std::size_t index) { return numbered("", index + 1, 2); }

/// A table of two columns, a running code and a name.
template <typename Names>
void writeList(Database &database, std::string_view table, const Names &names)
{
    Insert rows(database, table);
    std::size_t index = 0;
    for (const std::string_view name : names) {
        const auto number = code(index++);
        rows.text(number).text(name).add();
    }
}

std::string list(const std::vector<std::string> &texts)
{
    std::string result;
    for (const auto &text : texts)
        result.append(result.empty() ? "" : ",").append(text);
    return result;
}

std::string_view nameOf(const Site *site) { return site ? site->name : std::string_view(); }

} // namespace

Writer::Writer(Database &database)
    : m_database(database)
    , m_bills(database, "TAB_BILL")
    , m_scans { Insert(database, "TAB_SCAN_REC"), Insert(database, "TAB_SCAN_SEND"), Insert(database, "TAB_SCAN_COME"),
        Insert(database, "TAB_SCAN_DISP"), Insert(database, "TAB_SCAN_OTHER") }
    , m_signs(database, "TAB_SIGN")
    , m_problems(database, "TAB_PROBLEM")
    , m_statuses(database, "TAB_BILL_STATUS")
    , m_accounts(database, "TAB_ACCOUNT_LIST")
{
}

void Writer::writeNetwork(const Network &network)
{
    writeLookups();
    std::vector<std::string_view> areas;
    for (std::size_t number = 0; number < network.sites().size(); ++number) {
        const Site &site = network.sites()[number];
        writeSite(site, number);
        if (std::find(areas.begin(), areas.end(), site.area) == areas.end())
            areas.push_back(site.area);
    }
    writeList(m_database, "TAB_AREA", areas);
}

void Writer::writeLookups()
{
    writeList(m_database, "TAB_SCAN_TYPE", scanTypes);
    writeList(m_database, "TAB_CLASS", shifts);
    writeList(m_database, "TAB_GOODS_TYPE", goodsTypes);
    writeList(m_database, "TAB_FAST_TYPE", fastTypes);
    writeList(m_database, "TAB_PROBLEM_TYPE", problemTypes);
    Insert prices(m_database, "TAB_QUOTE_DATA");
    for (std::size_t index = 0; index < quotes.size(); ++index) {
        const auto number = code(index);
        prices.text(number).text(quotes[index].name).hundredths(quotes[index].first).hundredths(quotes[index].next).add();
    }
    Insert values(m_database, "TAB_GLOBAL_VALUE");
    for (const GlobalValue &value : globalValues)
        values.text(value.name).text(value.value).add();
}

void Writer::writeSite(const Site &site, std::size_t number)
{
    constexpr std::array<std::string_view, 6> groups { "一班组", "二班组", "三班组", "四班组", "五班组", "六班组" };
    const std::string car = "第" + code(number % 12) + "车";
    Insert(m_database, "TAB_SITE")
        .text(site.code)
        .text(site.name)
        .text(nameOf(site.superior))
        .text(site.firstSite->name)
        .text(site.centre->name)
        .text(site.province)
        .text(site.area)
        .text(site.type)
        .add();
    Insert basic(m_database, "TAB_SITE_BASIC");
    basic.text(site.name).text(groups[number % groups.size()]).text(car);
    if (site.type == siteType::franchised)
        basic.text("");
    else
        basic.integer(site.type == siteType::contracted || site.type == siteType::overseas ? 0 : 1);
    basic.add();
    Insert employees(m_database, "TAB_EMPLOYEE");
    for (const auto *people : { &site.couriers, &site.operators, &site.clerks })
        for (const Employee &employee : *people)
            employees.text(employee.code).text(employee.name).text(site.name).text(employee.department).add();
    Insert customers(m_database, "TAB_CUSTOMER");
    for (const Customer &customer : site.customers)
        customers.text(customer.code).text(customer.name).text(site.name).text(customer.linkMan).text(customer.phone).add();
}

void Writer::write(const Shipment &shipment)
{
    if (shipment.bill)
        writeBill(shipment, *shipment.bill);
    for (const Scan &scan : shipment.scans)
        writeScan(shipment, scan);
    if (shipment.sign)
        writeSign(shipment, *shipment.sign);
    for (const Problem &problem : shipment.problems)
        m_problems.text(shipment.code)
            .text(problem.type)
            .text(problem.site->name)
            .text(problem.clerk->name)
            .text(problem.clerk->code)
            .moment(problem.at)
            .text(problem.remark)
            .add();
    for (const Account &account : shipment.accounts)
        m_accounts.text(shipment.code)
            .moment(account.at)
            .text(account.from->name)
            .text(account.from->centre->name)
            .text(account.to->name)
            .text(account.to->centre->name)
            .hundredths(shipment.weight)
            .hundredths(shipment.transferFee)
            .add();
    if (!shipment.position.empty())
        m_statuses.text(shipment.code).text(shipment.position).moment(shipment.positionAt).add();
}

void Writer::writeBill(const Shipment &shipment, const Bill &bill)
{
    const auto subCodes = list(shipment.subCodes);
    const bool isToPay = shipment.toPayment > 0;
    m_bills.text(shipment.code)
        .text(subCodes)
        .moment(shipment.pickedUp)
        .text(shipment.origin->name)
        .text(bill.destination->name)
        .text(bill.shift)
        .text(shipment.goodsType)
        .text(shipment.goodsType)
        .text(shipment.fastType)
        .text(bill.dispatchMode)
        .integer(static_cast<std::int64_t>(shipment.subCodes.size()) + 1)
        .hundredths(shipment.weight)
        .text(bill.customer ? "月结"
                : isToPay   ? "到付"
                            : "现结")
        .text(isToPay ? "收件方" : "寄件方")
        .hundredths(shipment.transferFee);
    const auto unlessZero = [](Cents amount) { return amount > 0 ? std::optional(amount) : std::nullopt; };
    m_bills.hundredths(unlessZero(shipment.toPayment))
        .hundredths(unlessZero(shipment.goodsPayment))
        .integer(bill.returned)
        .integer(!bill.receiptCode.empty())
        .text(bill.receiptCode)
        .text(bill.customer ? bill.customer->code : std::string_view())
        .text(bill.customer ? bill.customer->name : std::string_view())
        .text(bill.courier)
        .text(bill.sender)
        .text(bill.senderPhone)
        .text(bill.senderAddress)
        .text(bill.receiver)
        .text(bill.receiverCompany)
        .text(bill.receiverPhone)
        .text(bill.receiverAddress)
        .text(shipment.origin->name)
        .text(bill.clerk->name)
        .moment(bill.registered)
        .text(bill.remark)
        .add();
}

void Writer::writeScan(const Shipment &shipment, const Scan &scan)
{
    Insert &rows = m_scans[static_cast<std::size_t>(scan.table)];
    for (std::size_t piece = 0; piece <= shipment.subCodes.size(); ++piece) {
        const bool isMain = piece == 0;
        const Moment at = scan.at + pieceInterval * static_cast<Moment>(piece);
        rows.text(shipment.code)
            .text(isMain ? std::string_view() : shipment.subCodes[piece - 1])
            .text(scan.bag)
            .text(scan.type)
            .text(scan.site->name)
            .moment(at)
            .text(scan.man->name)
            .text(scan.man->code)
            .moment(at + uploadDelay(at))
            .text(scan.courier)
            .text(shipment.origin->name)
            .text(scan.station)
            .text(shipment.destination->name)
            .integer(1)
            .hundredths(isMain ? shipment.weight : shipment.subWeights[piece - 1])
            .text(scan.shift)
            .text(shipment.goodsType)
            .text(shipment.fastType)
            .hundredths(isMain || !scan.fee ? scan.fee : pieceFee)
            .hundredths(isMain ? scan.otherFee : std::nullopt)
            .hundredths(isMain || !scan.auditedFee ? scan.auditedFee : pieceFee)
            .text(scan.customer)
            .text(scan.truckWay)
            .text(scan.remark)
            .add();
    }
}

void Writer::writeSign(const Shipment &shipment, const Sign &sign)
{
    const Site &origin = *shipment.origin;
    m_signs.text(shipment.code)
        .text(sign.state)
        .text(sign.man)
        .moment(sign.at)
        .text(sign.courier)
        .moment(sign.recorded)
        .text(sign.site->name)
        .text(sign.clerk->name)
        .text(sign.clerk->code)
        .text(origin.name)
        .text(origin.firstSite->name)
        .text(origin.centre->name)
        .text(sign.site->firstSite->name)
        .text(sign.site->centre->name)
        .hundredths(sign.fee)
        .text(sign.modifier ? sign.site->name : std::string_view())
        .text(sign.modifier ? sign.modifier->name : std::string_view())
        .text(sign.modifier ? sign.modifier->code : std::string_view())
        .text(sign.remark)
        .add();
}

void Writer::writeSums()
{
    m_database.run("insert into TAB_SIGN_SUM select " + m_database.startOfDay("SIGN_DATE")
        + ", RECORD_SITE, REC_SITE, count(*), sum(cast(round(DISPATCH_FEE * 100) as integer)) / 100.0"
          " from TAB_SIGN group by 1, 2, 3 order by 1, 2, 3");
}

} // namespace demo
