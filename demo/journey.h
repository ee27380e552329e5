#pragma once

#include "demo/shipment.h"

namespace demo {

/// Adds to a new shipment all that has happened to it up to `asOf`: its waybill, its scans on the way, the delivery and the
/// signature, and what went wrong.
void live(const Network &network, Random &random, Moment asOf, Shipment &shipment);

} // namespace demo
