#pragma once

#include "client/export/asked_conditions.h"

#include <QStatusBar>

class QLabel;
namespace files {
class SavedFileLabel;
}
class TDBGridEh;
class TForm;

namespace client {

constexpr int messageMilliseconds = 15'000;

enum class ConditionState { AsAsked, Changed, OldRows };

/// The status bar: what is shown and selected, the rights of the screen in front, who is logged in where, the server that answers, and the
/// server's clock.
class StatusLine : public QStatusBar {
    Q_OBJECT

public:
    StatusLine();

    void showRows(const TDBGridEh *grid); ///< null: no grid is current
    /// Whether the rows are those of the conditions that stand on the screen.
    void showConditions(ConditionState state);
    /// When the rows were asked for and how long that took; nothing when no query brought them.
    void showAsked(const std::optional<AskedConditions::Times> &times);
    void showSelection(const TDBGridEh *grid);
    void showRights(const TForm *form); ///< null: no screen is open
    void showLogin(const QString &user, const QString &loginSite);
    /// The server that answers; "": none does.
    void showServer(const QString &address);
    void showTime(const QString &time);
    /// Tells of a file that was written, and offers to open it.
    void showSavedFile(const QString &words, const QString &fileName);

protected:
    /// A click on the summary copies the sum.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *addField();

    files::SavedFileLabel *m_saved;
    QLabel *m_selection;
    QString m_sum; ///< of the selection
    QLabel *m_rows;
    QLabel *m_conditions;
    QLabel *m_asked;
    QLabel *m_rights;
    QLabel *m_login;
    QLabel *m_server; ///< hidden while no server is used
    QLabel *m_time;
};

/// Number, different values, sum and average of the selected cells.
struct SelectionSummary {
    QString text {}; ///< in words; empty unless several are selected
    QString sum {}; ///< exact; empty when there are no numbers among them
};
SelectionSummary selectionSummary(const TDBGridEh &grid);

} // namespace client
