#pragma once

#include "demo/shipment.h"

namespace demo {

/// The waybill of the shipment as its outlet types it in; nothing when that has not been done up to `asOf` or never is.
std::optional<Bill> enteredBill(
    const Network &network, Random &random, Moment asOf, const Shipment &shipment, std::string_view courier, const Customer *customer);

} // namespace demo
