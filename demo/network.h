#pragma once

#include "demo/lookups.h"
#include "demo/places.h"
#include "demo/random.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

struct Employee {
    std::string code;
    std::string name;
    std::string_view department;
};

struct Customer {
    std::string code;
    std::string name;
    std::string linkMan;
    std::string phone;
};

struct Site {
    std::string code;
    std::string_view name;
    std::string_view province;
    std::string_view area;
    std::string_view type;
    const Site *superior = nullptr; ///< the site that it belongs to
    const Site *upstream = nullptr; ///< the station with which it exchanges parcels; null for a centre
    const Site *firstSite = nullptr; ///< its outlet of the first level; itself for a centre
    const Site *centre = nullptr; ///< settles its fees; itself for a centre
    const Site *hub = nullptr; ///< a centre's hub
    int share = 0; ///< its part of the network's parcels
    std::vector<Employee> couriers;
    std::vector<Employee> operators;
    std::vector<Employee> clerks;
    std::vector<Customer> customers;

    bool isCentre() const { return centre == this; }
    /// Whether parcels of other sites are sorted here.
    bool sorts() const { return type == siteType::centre || type == siteType::inner; }
};

/// Chooses sites in proportion to their shares.
class SiteChoice {
public:
    void add(const Site &site, int share);
    bool isEmpty() const { return m_sites.empty(); }
    const Site &pick(Random &random) const;

private:
    std::vector<const Site *> m_sites;
    std::vector<int> m_limits;
};

/// The sites with their people and customers, and the ways between them. Sites keep their addresses for its lifetime.
class Network {
public:
    explicit Network(std::uint64_t seed);
    Network(const Network &) = delete;
    Network &operator=(const Network &) = delete;

    std::span<const Site> sites() const { return m_sites; }
    /// The site of that name, which must exist.
    const Site &site(std::string_view name) const;

    const Site &pickOrigin(Random &random) const { return m_origins.pick(random); }
    const Site &pickDestination(Random &random) const { return m_destinations.pick(random); }
    /// A destination that belongs to `centre`.
    const Site &pickDestination(Random &random, const Site &centre) const;
    /// Another site with the same upstream station, or `site` when it is the only one.
    const Site &pickNeighbour(Random &random, const Site &site) const;

    /// The stations from `origin` to `destination`, both included; a single one when they are the same.
    /// Parcels with a price to collect enter Beijing through the site that handles the money.
    std::vector<const Site *> route(const Site &origin, const Site &destination, bool collects) const;
    Distance distance(const Site &origin, const Site &destination) const;

private:
    void addSites();
    void addCentre(const Centre &centre, const Site &top);
    void addOutlet(const Outlet &outlet, std::size_t &count);
    void addPeople(Site &site, Random &random);
    void fillChoices();
    std::size_t indexOf(const Site &site) const { return static_cast<std::size_t>(&site - m_sites.data()); }

    std::vector<Site> m_sites;
    const Site *m_beijingMoney = nullptr;
    SiteChoice m_origins;
    SiteChoice m_destinations;
    std::vector<SiteChoice> m_destinationsByCentre; ///< by the centre's index
};

} // namespace demo
