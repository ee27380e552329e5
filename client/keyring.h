#pragma once

#include <QString>

#include <optional>

namespace client {

/// The system's store of passwords, where there is one: nothing of it is kept anywhere else.
class Keyring {
public:
    /// Nothing when this system has no store, or none that answers within a second.
    static std::optional<Keyring> find();

    /// Empty when there is none. The system may ask the person to unlock the store.
    [[nodiscard]] QString password(const QString &server, const QString &user) const;
    /// What cannot be stored is asked for the next time.
    void remember(const QString &server, const QString &user, const QString &password) const;
    void forget(const QString &server, const QString &user) const;

private:
    Keyring() = default;
};

} // namespace client
