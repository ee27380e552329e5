#pragma once

#include "options/command_line.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace client {

/// How the program looks and where it prints; what is not said is empty.
struct Preferences {
    int textPercent = 0; ///< size of all texts; 0: as usual
    QString tone; ///< "light" or "dark"
    QString printer;
};

/// What the command line and the files of settings say.
struct Options {
    QString database; ///< "sqlite:path"
    QStringList servers; ///< application servers that answer alike, instead of a database
    QStringList secondServers; ///< for the second connection; empty: the same
    QString serverCertificate; ///< a file with a certificate to trust beside the system's
    QString passwordFile; ///< its first line is the password; empty: the environment's, or a person is asked
    bool compressed = false; ///< asks servers to compress, for slow lines
    Preferences offered; ///< by files: for a person who has chosen nothing in the window
    Preferences wanted; ///< by the command line, whatever was chosen
    QString user; ///< empty: the first employee of the login site
    QString loginSite; ///< empty: the account's, or a default
    QDateTime now; ///< invalid: the computer's clock
    QDateTime serverNow; ///< invalid: the client's clock
    QString pluginDirectory; ///< empty: the program's own
    QString settingsDirectory; ///< empty: the program's own, or the user's
    QString settingsFile; ///< read in place of all the usual ones
    QString guideFolder; ///< not empty: the user's guide is written there, and nothing else is done
    QString diagnoseFile; ///< not empty: what the support wants to know is written there, and nothing else is done
    bool automation = false;
    bool strict = false; ///< the automation ends with 1 at the first failure
    bool version = false;
    bool help = false;
    bool printSettings = false;
};

/// Where settings come from, beside the command line. Whatever comes later overrides: the shared files in their order, the centre, the
/// person's own file.
struct SettingsSources {
    QStringList shared; ///< files; those that are not there are passed over
    std::map<std::string, std::string> centre; ///< keys and values
    QString own; ///< a file, likewise
};

/// What a command takes on its command line beside the options of the program.
struct CommandGrammar {
    std::vector<options::Option> options;
    std::function<void(const std::string &)> bare; ///< for what is no option; empty: there is none
};

/// Reads the sources, and over them the arguments (without the program's name). Throws an exception that says what is wrong with them.
Options readOptions(const QStringList &arguments, const SettingsSources &sources = {}, const CommandGrammar &command = {});
/// The text of --help.
QString optionsHelp();
/// A sample of a file of settings.
QString settingsSample();

} // namespace client
