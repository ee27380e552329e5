#pragma once

#include "demo/calendar.h"
#include "demo/network.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One parcel and all that is recorded of it. Texts that are views belong to the network or to fixed lists; an empty text
/// is stored as null. Money is in cents, weight in hundredths of a kilogram.
namespace demo {

using Cents = std::int64_t;

enum class ScanTable { Rec, Send, Come, Disp, Other };

/// A scan of the whole parcel; each of its pieces becomes a row, a few seconds apart.
struct Scan {
    ScanTable table;
    std::string_view type;
    const Site *site;
    const Employee *man;
    Moment at;
    std::string_view courier {};
    std::string_view station {}; ///< previous or next
    std::string_view shift {};
    std::optional<Cents> fee {}; ///< transfer or dispatch fee
    std::optional<Cents> otherFee {};
    std::optional<Cents> auditedFee {};
    std::string_view customer {};
    std::string_view remark {};
    std::string bag {};
    std::string truckWay {};
};

struct Bill {
    const Site *destination; ///< as written; now and then wrong
    std::string_view shift;
    std::string_view dispatchMode;
    const Customer *customer; ///< null for a casual sender
    std::string_view courier;
    std::string sender;
    std::string senderPhone;
    std::string senderAddress;
    std::string receiver;
    std::string receiverCompany;
    std::string receiverPhone;
    std::string receiverAddress;
    const Employee *clerk;
    Moment registered;
    bool returned = false;
    std::string receiptCode {}; ///< of the signed receipt that the sender wants back
    std::string_view remark {};
};

struct Sign {
    std::string_view state;
    std::string man;
    Moment at;
    std::string_view courier;
    Moment recorded;
    const Site *site;
    const Employee *clerk;
    const Employee *modifier = nullptr;
    Cents fee;
    std::string_view remark {};
};

struct Problem {
    std::string_view type;
    std::string_view remark;
    const Site *site;
    const Employee *clerk;
    Moment at;
};

/// A hand-over that is settled.
struct Account {
    const Site *from;
    const Site *to;
    Moment at;
};

struct Shipment {
    std::string code;
    std::vector<std::string> subCodes; ///< of the second piece and the following ones
    std::vector<int> subWeights;
    int weight = 0; ///< of all pieces
    const Site *origin = nullptr;
    const Site *destination = nullptr; ///< the real one
    Moment pickedUp = 0;
    std::string_view goodsType;
    std::string_view fastType;
    Cents transferFee = 0;
    Cents toPayment = 0;
    Cents goodsPayment = 0;
    std::vector<Scan> scans; ///< in time order
    std::optional<Bill> bill;
    std::optional<Sign> sign;
    std::vector<Problem> problems;
    std::vector<Account> accounts;
    std::string position;
    Moment positionAt = 0;
};

/// What one further piece adds to a scan's fee.
constexpr Cents pieceFee = 50;
/// Pieces are scanned one after the other.
constexpr Moment pieceInterval = 3;
/// A scanner passes on what it has scanned after some seconds.
constexpr Moment longestUploadDelay = 40;
constexpr Moment uploadDelay(Moment scannedAt) { return 1 + scannedAt % longestUploadDelay; }

/// The parcel that is picked up as the `index`-th at `pickedUp`: who sends what to whom, at which price. Its life is yet to come.
Shipment newShipment(const Network &network, Random &random, std::uint64_t index, Moment pickedUp);
Cents dispatchFee(const Shipment &shipment);

} // namespace demo
