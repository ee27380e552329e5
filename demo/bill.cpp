#include "demo/bill.h"

#include "demo/people.h"
#include "demo/text.h"

#include <array>

namespace demo {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t mainCodeLength = 12;

Moment entryDelay(Random &random)
{
    const bool isSlow = random.perMille(250);
    return isSlow ? random.between(8 * hour, 40 * hour) : random.between(30 * minute, 7 * hour);
}

void addSender(Bill &bill, Random &random, const Site &origin)
{
    bill.sender = bill.customer ? bill.customer->linkMan : personName(random);
    bill.senderPhone = bill.customer ? bill.customer->phone : phoneNumber(random);
    bill.senderAddress = streetAddress(random, origin.firstSite->name);
}

void addReceiver(Bill &bill, Random &random)
{
    const auto town = bill.destination->firstSite->name;
    bill.receiver = personName(random);
    if (random.perMille(400))
        bill.receiverCompany = companyName(random, town);
    bill.receiverPhone = phoneNumber(random);
    bill.receiverAddress = streetAddress(random, town);
}

} // namespace

std::optional<Bill> enteredBill(
    const Network &network, Random &random, Moment asOf, const Shipment &shipment, std::string_view courier, const Customer *customer)
{
    const Site &origin = *shipment.origin;
    const Moment registered = shipment.pickedUp + entryDelay(random);
    const bool isInnerDocument = shipment.code.size() < mainCodeLength;
    if (registered > asOf || random.perMille(isInnerDocument ? 700 : 45))
        return std::nullopt;
    Bill bill;
    bill.destination = random.perMille(12) ? &network.pickDestination(random) : shipment.destination;
    bill.shift = shipment.pickedUp % day < 14 * hour ? "中班" : "晚班";
    bill.dispatchMode = random.perMille(80) ? "自提" : "送货上门";
    bill.customer = customer;
    bill.courier = courier;
    addSender(bill, random, origin);
    addReceiver(bill, random);
    bill.clerk = &random.pick(origin.clerks);
    bill.registered = registered;
    if (random.perMille(50))
        bill.receiptCode = joined({ "HD", shipment.code });
    constexpr std::array remarks { "易碎，轻放"sv, "派前电联"sv, "工作日派送"sv };
    if (random.perMille(60))
        bill.remark = random.pick(remarks);
    return bill;
}

} // namespace demo
