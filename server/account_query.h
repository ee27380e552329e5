#pragma once

#include "packet/packet.h"
#include "server/settings/configuration.h"
#include "server/statements/database.h"

#include <stop_token>

namespace server {

/// Reads the accounts from the table that the configuration names, over a connection of its own. Used by one thread at a time.
class AccountQuery {
public:
    /// The configuration must outlive it.
    explicit AccountQuery(const Configuration &configuration);
    /// Throws engine::Error, and std::runtime_error when the statements of users could read the same.
    packet::PacketPtr ask(const std::stop_token &stop);

private:
    void checkPrivacy();

    const Configuration &m_configuration;
    const DatabaseConfiguration &m_served; ///< as it serves users
    Database m_database;
    bool m_isPrivate = false;
};

} // namespace server
