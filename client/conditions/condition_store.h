#pragma once

#include "client/conditions/condition_set.h"

namespace client {

/// What is kept of one screen for one person.
struct KeptConditions {
    std::optional<ConditionSet> last; ///< of the last query that was answered
    QList<ConditionSet> named; ///< in the order in which they were saved

    ConditionSet *find(const QString &name); ///< among the named ones; null when there is none
};

/// The conditions that a person has asked for, screen by screen, each in a small file of the settings folder. Nothing is held in memory:
/// two clients of one person see what the other one has saved.
class ConditionStore {
public:
    static constexpr int mostNamed = 30; ///< for one screen
    static constexpr int longestName = 40; ///< characters

    /// `folder` is made when something is saved first.
    explicit ConditionStore(const QString &folder);
    const QString &folder() const { return m_folder; }

    /// What is kept of a screen; nothing when there is no file. Throws Exception when the file cannot be used: a broken one has been
    /// renamed to "<name>.broken" before, so that it is told once.
    KeptConditions read(const QString &screen) const;
    /// Replaces what is kept of a screen. Throws Exception that says why it is not kept; what stood there before stays then.
    void write(const QString &screen, const KeptConditions &kept) const;
    /// A list of words of the person's own, such as favourite screens; with the same care.
    QStringList readList(const QString &name) const;
    void writeList(const QString &name, const QStringList &list) const;

private:
    QString fileOf(const QString &name) const;
    QJsonObject readFile(const QString &name) const;
    void writeFile(const QString &name, const QJsonObject &json) const;

    QString m_folder;
};

/// The folder of a person's conditions below the settings.
QString conditionFolder(const QString &settingsDirectory, const QString &user, const QString &loginSite);

} // namespace client
