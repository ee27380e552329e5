#pragma once

#include <QDateTime>
#include <QString>

namespace client {

/// What the command line says.
struct Options {
    QString database; ///< "sqlite:path"
    QStringList servers; ///< application servers that answer alike, instead of a database
    QStringList secondServers; ///< for the second connection; empty: the same
    QString serverCertificate; ///< a file with a certificate to trust beside the system's
    QString passwordFile; ///< its first line is the password; empty: the environment's, or a person is asked
    bool compressed = false; ///< asks servers to compress, for slow lines
    QString user; ///< empty: the first employee of the login site
    QString loginSite; ///< empty: the account's, or a default
    QDateTime now; ///< invalid: the computer's clock
    QDateTime serverNow; ///< invalid: the client's clock
    QString pluginDirectory; ///< empty: the program's own
    QString settingsDirectory; ///< empty: the program's own
    QString guideFolder; ///< not empty: the user's guide is written there, and nothing else is done
    bool automation = false;
    bool strict = false; ///< the automation ends with 1 at the first failure
    bool version = false;
    bool help = false;
};

/// Reads the arguments (without the program's name). Throws an exception that says what is wrong with them.
Options readOptions(const QStringList &arguments);
/// The text of --help.
QString optionsHelp();

} // namespace client
