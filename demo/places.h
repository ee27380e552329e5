#pragma once

#include <span>
#include <string_view>

namespace demo {

namespace siteType {

constexpr std::string_view centre = "中心";
constexpr std::string_view inner = "内部部门"; ///< sorts parcels beside a centre
constexpr std::string_view department = "业务部"; ///< sends parcels, but scans nothing itself
constexpr std::string_view own = "直营网点";
constexpr std::string_view contracted = "承包网点";
constexpr std::string_view franchised = "加盟网点";
constexpr std::string_view overseas = "境外网点";

} // namespace siteType

/// A centre: sorts the parcels of its region and settles their fees. Site names are UTF-8.
struct Centre {
    std::string_view name;
    std::string_view province;
    std::string_view area;
    std::string_view hub; ///< the centre through which parcels of far regions reach it; itself for a hub
    std::string_view dialCode; ///< begins the codes of its sites
};

/// A site below a centre.
struct Outlet {
    std::string_view name;
    std::string_view superior; ///< the site that it belongs to
    std::string_view upstream; ///< the station with which it exchanges parcels
    std::string_view area;
    std::string_view type;
    int share; ///< its part of the network's parcels, relative to the others
};

/// A hub stands before the centres that it serves, a site before those that belong to it.
std::span<const Centre> centres();
std::span<const Outlet> outlets();

} // namespace demo
