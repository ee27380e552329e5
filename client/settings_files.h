#pragma once

#include <QStringList>

namespace client {

struct Options;
struct SettingsSources;

/// The files of settings that everybody on this computer shares, in the order in which they are read: beside the program, then the
/// system's.
QStringList sharedSettingsFiles();
/// The person's own, read after the shared ones; it need not be there.
QString ownSettingsFile();
/// Both of them, and no centre.
SettingsSources usualSettings();
/// Writes a key into the person's own file, in place of the line that said it before. Throws Exception when that fails.
void keepOwnSetting(const QString &key, const QString &value);

/// Where layouts, conditions and choices are kept: beside the program where it may write there, unless it has been installed; else in
/// the person's folder, which begins as a copy of what lies beside the program.
QString usualSettingsDirectory();

/// What usualSettingsDirectory() does, for any folder of a program and of a person.
QString settingsDirectoryOf(const QString &program, const QString &person);

} // namespace client
