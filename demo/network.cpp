#include "demo/network.h"

#include "demo/people.h"
#include "demo/text.h"

#include <algorithm>
#include <cassert>
#include <set>

namespace demo {
namespace {

constexpr std::string_view headquarters = "总部";
constexpr std::string_view beijing = "北京";
constexpr std::string_view insideBeijing = "北京市内部";
constexpr std::string_view beijingMoney = "北京贷款";

std::string freshName(Random &random, std::set<std::string> &taken)
{
    for (;;) {
        auto name = personName(random);
        if (taken.insert(name).second)
            return name;
    }
}

/// From `site` up to its centre, both included.
std::vector<const Site *> chainUp(const Site &site)
{
    std::vector<const Site *> chain { &site };
    while (const Site *next = chain.back()->upstream)
        chain.push_back(next);
    return chain;
}

} // namespace

void SiteChoice::add(const Site &site, int share)
{
    m_limits.push_back((m_limits.empty() ? 0 : m_limits.back()) + share);
    m_sites.push_back(&site);
}

const Site &SiteChoice::pick(Random &random) const
{
    const auto value = random.below(m_limits.back());
    const auto found = std::upper_bound(m_limits.begin(), m_limits.end(), value);
    return *m_sites[static_cast<std::size_t>(found - m_limits.begin())];
}

Network::Network(std::uint64_t seed)
{
    addSites();
    Random random(seed, 0);
    for (Site &site : m_sites)
        addPeople(site, random);
    fillChoices();
    m_beijingMoney = &site(beijingMoney);
}

void Network::addSites()
{
    m_sites.reserve(1 + centres().size() + outlets().size());
    Site &top = m_sites.emplace_back();
    top.code = "000000";
    top.name = top.type = headquarters;
    top.province = beijing;
    top.area = centres().front().area;
    top.firstSite = top.centre = top.hub = &top;
    for (const Centre &centre : centres())
        addCentre(centre, top);
    std::vector<std::size_t> outletCounts(m_sites.size());
    for (const Outlet &outlet : outlets())
        addOutlet(outlet, outletCounts[indexOf(*site(outlet.superior).centre)]);
}

void Network::addCentre(const Centre &centre, const Site &top)
{
    Site &added = m_sites.emplace_back();
    added.code = numbered(centre.dialCode, 0, 3);
    added.name = centre.name;
    added.province = centre.province;
    added.area = centre.area;
    added.type = siteType::centre;
    added.superior = &top;
    added.firstSite = added.centre = &added;
    added.hub = &site(centre.hub);
    added.share = centre.name == beijing ? 28 : 0;
}

void Network::addOutlet(const Outlet &outlet, std::size_t &count)
{
    const Site &superior = site(outlet.superior);
    const std::string_view centreCode = superior.centre->code;
    Site &added = m_sites.emplace_back();
    added.code = numbered(centreCode.substr(0, centreCode.size() - 3), ++count, 3);
    added.name = outlet.name;
    added.province = superior.province;
    added.area = outlet.area;
    added.type = outlet.type;
    added.superior = &superior;
    added.upstream = &site(outlet.upstream);
    added.centre = superior.centre;
    added.firstSite = superior.isCentre() ? &added : superior.firstSite;
    added.hub = superior.hub;
    added.share = outlet.share;
}

void Network::addPeople(Site &site, Random &random)
{
    std::set<std::string> taken;
    const auto hire = [&](std::vector<Employee> &people, int count, std::string_view department) {
        for (int person = 0; person < count; ++person) {
            auto name = freshName(random, taken);
            people.push_back({ numbered(site.code, taken.size(), 3), std::move(name), department });
        }
    };
    hire(site.couriers, site.type == siteType::department ? 16 : 4 + site.share / 4, "业务部");
    hire(site.operators, site.sorts() ? 14 : 3 + site.share / 12, "操作部");
    hire(site.clerks, 2 + site.share / 20, "客服部");
    const int customers = site.share == 0 ? 0 : 2 + site.share / 5;
    for (int customer = 0; customer < customers; ++customer)
        site.customers.push_back({ numbered("K" + site.code, site.customers.size() + 1, 3), companyName(random, site.firstSite->name),
            personName(random), phoneNumber(random) });
}

void Network::fillChoices()
{
    m_destinationsByCentre.resize(m_sites.size());
    for (const Site &site : m_sites) {
        if (site.share == 0)
            continue;
        m_origins.add(site, site.share);
        if (site.type == siteType::department)
            continue;
        m_destinations.add(site, site.share);
        m_destinationsByCentre[indexOf(*site.centre)].add(site, site.share);
    }
}

const Site &Network::site(std::string_view name) const
{
    const auto found = std::find_if(m_sites.begin(), m_sites.end(), [&](const Site &site) { return site.name == name; });
    assert(found != m_sites.end());
    return *found;
}

const Site &Network::pickDestination(Random &random, const Site &centre) const
{
    return m_destinationsByCentre[indexOf(centre)].pick(random);
}

const Site &Network::pickNeighbour(Random &random, const Site &site) const
{
    constexpr int attempts = 20;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Site &other = pickDestination(random, *site.centre);
        if (&other != &site && other.upstream == site.upstream)
            return other;
    }
    return site;
}

std::vector<const Site *> Network::route(const Site &origin, const Site &destination, bool collects) const
{
    auto up = chainUp(origin);
    auto down = chainUp(destination);
    if (up.back() == down.back()) {
        while (up.size() > 1 && down.size() > 1 && up[up.size() - 2] == down[down.size() - 2]) {
            up.pop_back();
            down.pop_back();
        }
        down.pop_back();
    } else if (const Site *hub = down.back()->hub; hub != up.back() && hub != down.back() && hub != up.back()->hub) {
        up.push_back(hub);
    }
    if (collects && up.back()->name != beijing)
        for (const Site *&station : down)
            if (station->name == insideBeijing)
                station = m_beijingMoney;
    up.insert(up.end(), down.rbegin(), down.rend());
    return up;
}

Distance Network::distance(const Site &origin, const Site &destination) const
{
    if (origin.type == siteType::overseas || destination.type == siteType::overseas)
        return HongKong;
    if (origin.firstSite == destination.firstSite || (origin.centre == destination.centre && origin.centre->name == beijing))
        return City;
    if (origin.centre == destination.centre)
        return Province;
    return origin.hub == destination.hub ? Region : Far;
}

} // namespace demo
