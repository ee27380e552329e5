#include "demo/journey.h"

#include "demo/bill.h"
#include "demo/people.h"
#include "demo/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace demo {
namespace {

using namespace std::string_view_literals;

/// Stations that stand on scans but are no sites: hired lorries, and outlets that have closed.
constexpr std::array unknownStations { "外包加班车"sv, "社会车辆"sv, "北京西客站（已撤）"sv };

/// The first of the day's times after `moment`.
Moment nextTime(Moment moment, std::initializer_list<Moment> times)
{
    for (const Moment time : times)
        if (startOfDay(moment) + time > moment)
            return startOfDay(moment) + time;
    return startOfDay(moment) + day + *times.begin();
}

class Life {
public:
    Life(const Network &network, Random &random, Moment asOf, Shipment &shipment)
        : m_network(network)
        , m_random(random)
        , m_asOf(asOf)
        , m_shipment(shipment)
        , m_time(shipment.pickedUp)
        , m_courier(random.pick(shipment.origin->couriers).name)
        , m_customer(pickCustomer())
    {
    }

    void run()
    {
        if (!reached())
            return;
        pickUp();
        m_shipment.bill = enteredBill(m_network, m_random, m_asOf, m_shipment, m_courier, m_customer);
        if (travel())
            deliver();
    }

private:
    const Customer *pickCustomer();
    void pickUp();
    bool travel();
    bool ride(const Site &from, const Site &to, const Site &arrivesAt, bool isLast);
    void send(const Site &from, const Site &to, std::string_view shift, bool isLast);
    void putIntoBag(Scan &scan);
    void arrive(const Site &from, const Site &to, std::string_view shift, bool isLast);
    void pickUpAtHub(const Site &hub);
    void deliver();
    bool putOut(const Site &site);
    void returnToSender(const Site &site);
    void sign(const Site &site);

    std::string_view shiftFor(const Site &from, const Site &to);
    Moment ridingTime(const Site &from, const Site &to, std::string_view shift);
    std::optional<Cents> audited(const Site &from, Cents fee);
    /// Whether all pieces can have been scanned now.
    bool reached() const { return m_time + pieceInterval * static_cast<Moment>(m_shipment.subCodes.size()) + longestUploadDelay <= m_asOf; }
    void wait(Moment shortest, Moment longest) { m_time += m_random.between(shortest, longest); }
    Scan scan(ScanTable table, std::string_view type, const Site &site)
    {
        return { table, type, &site, &m_random.pick(site.operators), m_time };
    }
    void record(Scan scan, int missedPerMille);
    void recordOther(std::string_view type, const Site &site);
    void problem(ProblemType type, const Site &site, Moment at);
    void position(std::string words)
    {
        m_shipment.position = std::move(words);
        m_shipment.positionAt = m_time;
    }

    const Network &m_network;
    Random &m_random;
    Moment m_asOf;
    Shipment &m_shipment;
    Moment m_time;
    std::string_view m_courier; ///< who picked the parcel up, or is delivering it
    const Customer *m_customer;
};

const Customer *Life::pickCustomer()
{
    const auto &customers = m_shipment.origin->customers;
    return !customers.empty() && m_random.perMille(450) ? &m_random.pick(customers) : nullptr;
}

void Life::record(Scan scan, int missedPerMille)
{
    if (!m_random.perMille(missedPerMille))
        m_shipment.scans.push_back(std::move(scan));
}

void Life::recordOther(std::string_view type, const Site &site)
{
    if (reached())
        record(scan(ScanTable::Other, type, site), 0);
}

void Life::problem(ProblemType type, const Site &site, Moment at)
{
    if (at <= m_asOf)
        m_shipment.problems.push_back({ problemTypes[type], problemRemarks[type], &site, &m_random.pick(site.clerks), at });
}

void Life::pickUp()
{
    const Site &origin = *m_shipment.origin;
    position(joined({ "【", origin.name, "】业务员", m_courier, "已收件" }));
    if (origin.type == siteType::department)
        return; // the department has no scanner: the hub scans the pick-up
    Scan scan = this->scan(ScanTable::Rec, "收件", origin);
    scan.courier = m_courier;
    scan.shift = m_random.perMille(30) ? ""sv : m_time % day < 14 * hour ? "中班"sv : "晚班"sv;
    scan.fee = m_shipment.transferFee;
    scan.customer = m_customer ? std::string_view(m_customer->name) : ""sv;
    record(std::move(scan), m_customer ? 150 : 35); // contract customers often hand over their parcels unscanned
    if (m_random.perMille(200)) {
        wait(5 * minute, 20 * minute);
        recordOther("称重", origin);
    }
}

bool Life::travel()
{
    const auto stations = m_network.route(*m_shipment.origin, *m_shipment.destination, m_shipment.goodsPayment > 0);
    for (std::size_t leg = 0; leg + 1 < stations.size(); ++leg) {
        const Site &from = *stations[leg];
        const Site &to = *stations[leg + 1];
        const bool isLast = leg + 2 == stations.size();
        const Site &arrivesAt = isLast && from.sorts() && m_random.perMille(18) ? m_network.pickNeighbour(m_random, to) : to;
        if (!ride(from, to, arrivesAt, isLast))
            return false;
        if (&arrivesAt == &to)
            continue;
        problem(Misrouted, arrivesAt, m_time + hour);
        if (m_random.perMille(300))
            m_shipment.destination = &arrivesAt; // the wrong outlet delivers it all the same
        else if (!ride(arrivesAt, from, from, false) || !ride(from, to, to, true))
            return false;
    }
    return true;
}

/// One leg: false when the parcel has not arrived, be it lost or still on its way.
bool Life::ride(const Site &from, const Site &to, const Site &arrivesAt, bool isLast)
{
    if (from.sorts())
        wait(hour, 5 * hour);
    else
        m_time = nextTime(m_time + 15 * minute, { 7 * hour + 30 * minute, 13 * hour, 18 * hour + 30 * minute, 21 * hour })
            + m_random.below(45 * minute);
    if (!reached())
        return false;
    const auto shift = shiftFor(from, to);
    send(from, to, shift, isLast);
    if (m_random.perMille(3)) {
        if (m_random.perMille(500))
            problem(Lost, to, m_time + m_random.between(2 * day, 4 * day));
        return false;
    }
    m_time += ridingTime(from, arrivesAt, shift);
    if (!reached())
        return false;
    arrive(from, arrivesAt, shift, isLast);
    return true;
}

void Life::send(const Site &from, const Site &to, std::string_view shift, bool isLast)
{
    Scan scan = this->scan(ScanTable::Send, isLast && from.sorts() && m_random.perMille(850) ? "出库" : "发件", from);
    scan.station = to.name;
    scan.shift = m_random.perMille(20) ? ""sv : shift;
    if (from.sorts())
        scan.fee = m_shipment.transferFee;
    else
        scan.courier = m_courier;
    if (from.sorts() && to.sorts()) {
        scan.truckWay = joined({ from.name, "-", to.name, "线" });
        putIntoBag(scan);
    }
    record(std::move(scan), 10);
    position(joined({ "快件已从【", from.name, "】发往【", to.name, "】" }));
}

/// Small parcels travel between centres in numbered bags.
void Life::putIntoBag(Scan &scan)
{
    constexpr int heaviest = 200;
    if (m_shipment.weight >= heaviest || !m_random.perMille(600))
        return;
    scan.bag = joined({ "D", scan.site->code, std::to_string(m_time / day % 1000), std::to_string(10 + m_random.below(20)) });
    if (m_random.perMille(200))
        m_shipment.scans.push_back({ ScanTable::Other, "装袋", scan.site, scan.man, m_time - 2 * minute });
}

void Life::arrive(const Site &from, const Site &to, std::string_view shift, bool isLast)
{
    Scan scan = this->scan(ScanTable::Come, isLast && m_random.perMille(850) ? "接件" : "到件", to);
    const auto doubt = m_random.below(1000);
    scan.station = doubt < 6 ? m_random.pick(unknownStations) : doubt < 8 ? ""sv : from.name;
    scan.shift = m_random.perMille(20) ? ""sv : shift;
    scan.fee = from.upstream && !from.sorts() ? m_shipment.transferFee : m_shipment.transferFee * 2 / 5;
    scan.auditedFee = audited(from, *scan.fee);
    if (!isLast && !from.sorts() && &from != m_shipment.origin && from.firstSite != m_shipment.origin->firstSite)
        scan.remark = "转回件";
    if (isLast)
        scan.otherFee = dispatchFee(m_shipment);
    if (!m_shipment.scans.empty() && m_shipment.scans.back().station == to.name)
        scan.bag = m_shipment.scans.back().bag;
    if (from.centre != to.centre || !from.sorts())
        m_shipment.accounts.push_back({ &from, &to, m_time });
    const bool isBagged = !scan.bag.empty();
    record(std::move(scan), 14);
    position(joined({ "快件已到达【", to.name, "】" }));
    if (from.type == siteType::department)
        pickUpAtHub(to);
    if (isBagged && m_random.perMille(150)) {
        wait(5 * minute, 40 * minute);
        recordOther("拆包", to);
    }
    if (m_random.perMille(3))
        problem(m_shipment.subCodes.empty() ? Damaged : PieceMissing, to, m_time + 20 * minute);
}

/// The department's pick-ups are booked at the hub for one of its people; some never, some twice.
void Life::pickUpAtHub(const Site &hub)
{
    const int scans = m_random.perMille(60) ? 0 : m_random.perMille(40) ? 2 : 1;
    for (int number = 0; number < scans; ++number) {
        wait(4 * minute, 25 * minute);
        if (!reached())
            return;
        Scan scan = this->scan(ScanTable::Rec, "收件", hub);
        scan.courier = number == 0 ? m_courier : std::string_view(m_random.pick(m_shipment.origin->couriers).name);
        scan.station = m_shipment.origin->name;
        scan.shift = "夜班";
        scan.fee = m_shipment.transferFee;
        scan.customer = m_customer ? std::string_view(m_customer->name) : ""sv;
        record(std::move(scan), 0);
    }
}

std::string_view Life::shiftFor(const Site &from, const Site &to)
{
    const auto share = m_random.below(1000);
    if (from.isCentre() && to.isCentre()) {
        const bool isFar = from.hub != to.hub;
        if (m_shipment.fastType == "航空件" || m_shipment.fastType == "次晨达")
            return isFar ? "航班" : "班车";
        if (m_shipment.fastType == "陆运件" || !isFar)
            return share < 200 ? "铁路" : "班车";
        return share < 330 ? "航班" : share < 700 ? "铁路" : "班车";
    }
    if (share < 300)
        return "班车";
    if (share < 315)
        return "加班";
    const Moment time = m_time % day;
    return time < 6 * hour ? "夜班" : time < 12 * hour ? "早班" : time < 17 * hour ? "中班" : time < 22 * hour ? "晚班" : "夜班";
}

Moment Life::ridingTime(const Site &from, const Site &to, std::string_view shift)
{
    if (from.centre == to.centre)
        return from.province == "北京" ? m_random.between(35 * minute, 110 * minute) : m_random.between(80 * minute, 4 * hour);
    if (shift == "航班")
        return m_random.between(5 * hour, 9 * hour);
    if (shift == "铁路")
        return m_random.between(12 * hour, 22 * hour);
    return from.hub == to.hub ? m_random.between(5 * hour, 11 * hour) : m_random.between(16 * hour, 32 * hour);
}

/// Null where the audit has not come by: now and then, and always for the franchised outlets of one code in five.
std::optional<Cents> Life::audited(const Site &from, Cents fee)
{
    if ((from.type == siteType::franchised && from.code.back() == '3') || m_random.perMille(60))
        return std::nullopt;
    return m_random.perMille(80) ? std::max<Cents>(0, fee + m_random.between(-180, 240)) : fee;
}

void Life::deliver()
{
    const Site &site = *m_shipment.destination;
    if (m_random.perMille(150)) {
        wait(5 * minute, 30 * minute);
        recordOther("入库", site);
    }
    if (m_random.perMille(10) || !putOut(site))
        return;
    if (m_random.perMille(8))
        return returnToSender(site);
    if (m_random.perMille(50)) {
        wait(2 * hour, 5 * hour);
        if (!reached())
            return;
        problem(m_random.perMille(500) ? NobodyHome : AddressUnclear, site, m_time);
        recordOther("留仓", site);
        position(joined({ "问题件：", "派送不成功，留仓于【", site.name, "】" }));
        m_time = startOfDay(m_time) + day;
        if (!putOut(site))
            return;
    }
    sign(site);
}

bool Life::putOut(const Site &site)
{
    m_time = nextTime(m_time + 20 * minute, { 8 * hour + 30 * minute, 14 * hour + 30 * minute }) + m_random.below(50 * minute);
    if (!reached())
        return false;
    m_courier = m_random.pick(site.couriers).name;
    Scan scan = this->scan(ScanTable::Disp, "派件", site);
    scan.courier = m_courier;
    scan.shift = m_time % day < 12 * hour ? "早班" : "中班";
    scan.fee = dispatchFee(m_shipment);
    record(std::move(scan), 8);
    position(joined({ "【", site.name, "】派件员", m_courier, "派件中" }));
    return true;
}

void Life::returnToSender(const Site &site)
{
    wait(hour, 3 * hour);
    if (!reached())
        return;
    problem(Refused, site, m_time);
    recordOther("退件扫描", site);
    position(joined({ "客户拒收，【", site.name, "】退件" }));
    if (m_shipment.bill)
        m_shipment.bill->returned = true;
    if (site.upstream)
        ride(site, *site.upstream, *site.upstream, false);
}

void Life::sign(const Site &site)
{
    wait(20 * minute, 4 * hour);
    const Moment recorded = m_time + (m_random.perMille(700) ? m_random.below(30 * minute) : m_random.below(5 * hour));
    if (recorded > m_asOf || m_random.perMille(15))
        return;
    Sign sign { "正常签收", {}, m_time, m_courier, recorded, &site, &m_random.pick(site.clerks), nullptr, dispatchFee(m_shipment) };
    constexpr std::array deputies { "前台"sv, "收发室"sv, "门卫"sv, "同事代收"sv };
    if (m_random.perMille(150)) {
        sign.state = "代签收";
        sign.man = m_random.pick(deputies);
    } else {
        sign.man = m_shipment.bill ? m_shipment.bill->receiver : personName(m_random);
    }
    if (m_random.perMille(20))
        sign.modifier = &m_random.pick(site.clerks);
    if (m_random.perMille(30))
        sign.remark = "外包装完好";
    position(joined({ "已签收，签收人：", sign.man }));
    m_shipment.sign = std::move(sign);
}

} // namespace

void live(const Network &network, Random &random, Moment asOf, Shipment &shipment) { Life(network, random, asOf, shipment).run(); }

} // namespace demo
