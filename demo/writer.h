#pragma once

#include "demo/database.h"
#include "demo/shipment.h"

#include <array>

namespace demo {

/// Writes the network and its shipments to a new database with the tables of the schema.
class Writer {
public:
    explicit Writer(Database &database);

    void writeNetwork(const Network &network);
    void write(const Shipment &shipment);
    /// The daily sums of the signatures; to be called after the last shipment.
    void writeSums();

private:
    void writeLookups();
    void writeSite(const Site &site, std::size_t number);
    void writeBill(const Shipment &shipment, const Bill &bill);
    void writeScan(const Shipment &shipment, const Scan &scan);
    void writeSign(const Shipment &shipment, const Sign &sign);

    Database &m_database;
    Insert m_bills;
    std::array<Insert, 5> m_scans; ///< by ScanTable
    Insert m_signs;
    Insert m_problems;
    Insert m_statuses;
    Insert m_accounts;
};

} // namespace demo
