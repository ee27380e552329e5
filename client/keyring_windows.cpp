#include "client/keyring.h"

#include <windows.h>

#include <wincred.h>

namespace client {

namespace {

std::wstring nameOf(const QString &server, const QString &user)
{
    return QStringLiteral("Kelvara %1 @ %2").arg(user, server).toStdWString();
}

} // namespace

std::optional<Keyring> Keyring::find() { return Keyring(); }

QString Keyring::password(const QString &server, const QString &user) const
{
    CREDENTIALW *found = nullptr;
    if (!CredReadW(nameOf(server, user).c_str(), CRED_TYPE_GENERIC, 0, &found))
        return {};
    const auto *bytes = reinterpret_cast<const char *>(found->CredentialBlob);
    const QString password = QString::fromUtf8(bytes, qsizetype(found->CredentialBlobSize));
    SecureZeroMemory(found->CredentialBlob, found->CredentialBlobSize);
    CredFree(found);
    return password;
}

void Keyring::remember(const QString &server, const QString &user, const QString &password) const
{
    std::wstring name = nameOf(server, user);
    std::wstring account = user.toStdWString();
    QByteArray secret = password.toUtf8();
    CREDENTIALW credential {};
    credential.Type = CRED_TYPE_GENERIC;
    credential.TargetName = name.data();
    credential.UserName = account.data();
    credential.CredentialBlob = reinterpret_cast<BYTE *>(secret.data());
    credential.CredentialBlobSize = DWORD(secret.size());
    credential.Persist = CRED_PERSIST_LOCAL_MACHINE;
    CredWriteW(&credential, 0);
    secret.fill('\0');
}

void Keyring::forget(const QString &server, const QString &user) const { CredDeleteW(nameOf(server, user).c_str(), CRED_TYPE_GENERIC, 0); }

} // namespace client
