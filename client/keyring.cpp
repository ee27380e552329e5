#include "client/keyring.h"

#ifdef KELVARA_LIBSECRET
#include <libsecret/secret.h>

#include <chrono>
#include <future>
#include <thread>
#endif

namespace client {

#ifdef KELVARA_LIBSECRET

namespace {

const SecretSchema &schema()
{
    static const SecretSchema passwords { "kelvara.client.password", SECRET_SCHEMA_NONE,
        { { "server", SECRET_SCHEMA_ATTRIBUTE_STRING }, { "user", SECRET_SCHEMA_ATTRIBUTE_STRING }, { nullptr, {} } }, 0, nullptr, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr };
    return passwords;
}

bool hasService()
{
    SecretService *service = secret_service_get_sync(SECRET_SERVICE_NONE, nullptr, nullptr);
    if (!service)
        return false;
    gchar *owner = g_dbus_proxy_get_name_owner(G_DBUS_PROXY(service));
    const bool answers = owner;
    g_free(owner);
    g_object_unref(service);
    return answers;
}

} // namespace

std::optional<Keyring> Keyring::find()
{
    // A bus that does not answer would hold the window up for half a minute.
    std::packaged_task<bool()> ask(hasService);
    std::future<bool> answer = ask.get_future();
    std::thread(std::move(ask)).detach();
    if (answer.wait_for(std::chrono::seconds(1)) != std::future_status::ready || !answer.get())
        return std::nullopt;
    return Keyring();
}

QString Keyring::password(const QString &server, const QString &user) const
{
    gchar *secret = secret_password_lookup_sync(
        &schema(), nullptr, nullptr, "server", server.toUtf8().constData(), "user", user.toUtf8().constData(), nullptr);
    const QString password = QString::fromUtf8(secret);
    secret_password_free(secret); // wipes it
    return password;
}

void Keyring::remember(const QString &server, const QString &user, const QString &password) const
{
    const QString label = QStringLiteral("Kelvara %1 @ %2").arg(user, server);
    QByteArray secret = password.toUtf8();
    secret_password_store_sync(&schema(), SECRET_COLLECTION_DEFAULT, label.toUtf8().constData(), secret.constData(), nullptr, nullptr,
        "server", server.toUtf8().constData(), "user", user.toUtf8().constData(), nullptr);
    secret.fill('\0');
}

void Keyring::forget(const QString &server, const QString &user) const
{
    secret_password_clear_sync(
        &schema(), nullptr, nullptr, "server", server.toUtf8().constData(), "user", user.toUtf8().constData(), nullptr);
}

#else

std::optional<Keyring> Keyring::find() { return std::nullopt; }
QString Keyring::password(const QString &, const QString &) const { return {}; }
void Keyring::remember(const QString &, const QString &, const QString &) const { }
void Keyring::forget(const QString &, const QString &) const { }

#endif

} // namespace client
