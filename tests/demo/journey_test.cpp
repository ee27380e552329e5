#include "demo/journey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

using namespace demo;

TEST(Journey, RunsForwardInTimeAndStopsAtTheEnd)
{
    const Network network(1);
    const Moment pickedUp = *parseMoment("2026-03-10 17:20:00");
    int signatures = 0;
    std::set<std::string> codes;
    for (std::uint64_t index = 0; index < 3000; ++index) {
        const Moment asOf = pickedUp + static_cast<Moment>(index) * 200;
        Random random(5, index);
        Shipment shipment = newShipment(network, random, index, pickedUp);
        live(network, random, asOf, shipment);
        EXPECT_TRUE(codes.insert(shipment.code).second) << shipment.code;
        EXPECT_TRUE(std::is_sorted(shipment.scans.begin(), shipment.scans.end(), [](const Scan &a, const Scan &b) { return a.at < b.at; }))
            << shipment.code;
        EXPECT_LE(shipment.positionAt, asOf);
        EXPECT_LE(std::accumulate(shipment.subWeights.begin(), shipment.subWeights.end(), 0), shipment.weight);
        if (!shipment.scans.empty()) {
            const Moment lastPiece = shipment.scans.back().at + pieceInterval * static_cast<Moment>(shipment.subCodes.size());
            EXPECT_LE(lastPiece + uploadDelay(lastPiece), asOf) << shipment.code;
        }
        if (shipment.sign) {
            ++signatures;
            EXPECT_EQ(shipment.sign->site, shipment.destination);
            EXPECT_TRUE(shipment.scans.empty() || shipment.scans.back().at < shipment.sign->at) << shipment.code;
            EXPECT_EQ(shipment.position, "已签收，签收人：" + shipment.sign->man);
        }
    }
    EXPECT_GT(signatures, 1000);
}

TEST(Journey, ChargesToTheCent)
{
    const Network network(1);
    Random random(1);
    Shipment shipment = newShipment(network, random, 1, 0);
    shipment.weight = 100;
    EXPECT_EQ(dispatchFee(shipment), 120);
    shipment.weight = 350;
    EXPECT_EQ(dispatchFee(shipment), 190);
    shipment.weight = 1528;
    EXPECT_EQ(dispatchFee(shipment), 520); // 120 + 28 * 14.28, rounded
}
