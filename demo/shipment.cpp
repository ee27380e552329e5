#include "demo/shipment.h"

#include "demo/text.h"

#include <algorithm>
#include <array>

namespace demo {
namespace {

constexpr int firstKilogram = 100;

/// Scatters the numbers below `range`, a power of ten, without repeating one: the factor is no multiple of two or five.
std::uint64_t scattered(std::uint64_t index, std::uint64_t range) { return (index * 387420499 + 40961) % range; }

/// Mostly twelve digits; a few have the short forms of inner documents. `index` makes it unique.
std::string waybillCode(Random &random, std::uint64_t index)
{
    constexpr std::uint64_t shortRange = 10'000'000;
    const auto form = random.below(1000);
    if (form >= 34 || index >= shortRange)
        return numbered("268", scattered(index, 1'000'000'000), 9);
    constexpr std::array<std::string_view, 4> leadingDigits { "1", "2", "4", "6" };
    if (form < 12)
        return numbered("1", scattered(index, shortRange), 7);
    if (form < 22)
        return numbered(std::string(1, static_cast<char>('A' + random.below(26))), scattered(index, shortRange), 7);
    return numbered(random.pick(leadingDigits), scattered(index, shortRange), 7);
}

int parcelWeight(Random &random, std::string_view goods)
{
    if (goods == "文件")
        return static_cast<int>(random.between(10, 80));
    const auto largest = random.between(30, 1200);
    const auto weight = largest * random.between(20, 100) / 100; // light ones are frequent
    return static_cast<int>(random.perMille(60) ? weight * 4 : weight);
}

void split(Random &random, Shipment &shipment)
{
    if (shipment.weight < 300 || !random.perMille(70))
        return;
    const int pieces = static_cast<int>(random.between(2, 6));
    for (int piece = 2; piece <= pieces; ++piece) {
        shipment.subCodes.push_back(numbered(shipment.code, static_cast<std::uint64_t>(piece), 3));
        shipment.subWeights.push_back(shipment.weight / pieces);
    }
}

std::string_view fastTypeFor(Random &random, Distance distance)
{
    if (distance == HongKong)
        return "香港件";
    if (distance == City)
        return random.perMille(250) ? "当天件" : "普通件";
    const auto share = random.below(1000);
    return share < 120 ? "次晨达" : share < 260 ? "航空件" : share < 420 ? "陆运件" : "普通件";
}

Cents transferFee(const Quote &quote, int weight)
{
    const int further = std::max(0, weight - firstKilogram);
    return quote.first + (quote.next * further + firstKilogram / 2) / firstKilogram;
}

} // namespace

Shipment newShipment(const Network &network, Random &random, std::uint64_t index, Moment pickedUp)
{
    Shipment shipment;
    shipment.code = waybillCode(random, index);
    shipment.pickedUp = pickedUp;
    shipment.origin = &network.pickOrigin(random);
    const bool nearby = random.perMille(300);
    shipment.destination = nearby ? &network.pickDestination(random, *shipment.origin->centre) : &network.pickDestination(random);
    const auto distance = network.distance(*shipment.origin, *shipment.destination);
    shipment.goodsType = random.pick(goodsTypes);
    shipment.fastType = fastTypeFor(random, distance);
    shipment.weight = parcelWeight(random, shipment.goodsType);
    split(random, shipment);
    shipment.transferFee = transferFee(quotes[distance], shipment.weight);
    if (random.perMille(120))
        shipment.toPayment = shipment.transferFee * 2 + random.between(0, 300);
    if (shipment.goodsType != "文件" && random.perMille(90))
        shipment.goodsPayment = random.between(3500, 298000);
    return shipment;
}

Cents dispatchFee(const Shipment &shipment)
{
    constexpr Cents base = 120;
    constexpr Cents perKilogram = 28;
    return base + (perKilogram * std::max(0, shipment.weight - firstKilogram) + firstKilogram / 2) / firstKilogram;
}

} // namespace demo
