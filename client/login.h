#pragma once

#include <QMap>
#include <QString>

#include <optional>

namespace server_client {
struct Account;
}

namespace client {

struct Options;

/// Who uses the client, where, and what may be opened: what the account says, or the options where there is none.
struct Login {
    static constexpr qsizetype rightsSize = 3; ///< characters, at the end of a form name

    QString user; ///< by name or code; empty: the first employee of the site
    QString employeeCode; ///< empty, like the name: looked up by the user
    QString employeeName;
    QString site; ///< name
    QString userSite; ///< the sites that may be asked for, as ('A','B'); empty: all
    QMap<QString, QString> screens { { QStringLiteral("*"), QStringLiteral("111") } }; ///< with their rights; "*": those that are not named

    /// Of who uses a database in this process.
    static Login of(const Options &options);
    /// Throws Exception when the options ask for a site that the account does not have.
    static Login of(const Options &options, const server_client::Account &account);

    /// The rights to a screen; empty: it must not be opened.
    [[nodiscard]] QString rightsTo(const QString &screen) const;
    /// A screen's name and rights with no more rights than there are; empty: it must not be opened.
    [[nodiscard]] QString permitted(const QString &formName) const;
};

/// The password that was given beforehand; nothing when a person is to be asked. Throws Exception.
std::optional<QString> givenPassword(const Options &options);

/// Who logged in here the last time.
QString rememberedUser();
void rememberUser(const QString &user);

} // namespace client
