#pragma once

#include "client/bills/bill_lists.h"
#include "client/conditions/condition_memory.h"
#include "client/diagnostics.h"
#include "client/export/asked_conditions.h"
#include "client/host_data.h"
#include "client/login.h"
#include "client/options.h"
#include "client/shortcuts.h"
#include "client/waybill_tracks.h"
#include "platform/connection/socket_connection.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/library_loader.h"

#include <QElapsedTimer>
#include <QTimer>

#include <memory>

class QAction;
class QMenu;
class QToolBar;

namespace client {

class Connections;
class HelpWindow;
class PinnedResult;
class StartDesk;
class StartPage;
struct DayCount;
class StatusLine;
class WindowTabs;
struct ExportTarget;

/// The host: publishes its datasets and values, opens the plug-in's screens as child windows and offers the commands that work
/// on the current one.
class MainWindow : public TMainForm {
    Q_OBJECT
    Q_PROPERTY(qulonglong GlobalCdsAddr READ globalDataSets)
    Q_PROPERTY(qulonglong GlobalValueAddr READ globalValues)
    Q_PROPERTY(double ServerDateTime READ serverDateTime)

public:
    /// The result of the event loop when somebody else has logged in, whose window is another one.
    static constexpr int anotherUser = 100;

    /// Loads the published data and the plug-in; throws what goes wrong.
    MainWindow(const Options &options, std::shared_ptr<Connections> connections);
    ~MainWindow() override;

    Q_INVOKABLE void ResetSearch(QObject *grid);
    qintptr perform(int message, quintptr form, qintptr second) override;

    /// Calls the plug-in's exec with this text, less the rights that the login does not have. Throws Exception when it does not have the
    /// screen.
    void openScreen(const QString &formName);
    bool mayOpen(const QString &screen) const { return !m_login.rightsTo(screen).isEmpty(); }
    /// Presses the query button of the screen in front; throws Exception when there is none.
    void query();
    enum class Print { Preview, AtOnce };
    /// Shows the current grid as it would be printed, or asks for a printer at once.
    void print(Print way = Print::Preview);
    /// Writes what a grid shows, with its screen's conditions, in the background of a wait window; returns the number of rows.
    int exportTo(const TDBGridEh &grid, const ExportTarget &target);
    TDBGridEh *currentGrid() const { return m_grid; }
    /// Takes the place on the screen that the window had last, or all of it.
    void takeLastPlace();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Command;
    static const QList<Command> &commands();
    static QList<QKeySequence> designedKeys(const Command &command);

    void loadData();
    void loadPlugin();
    void logInAgain(const QString &why);
    void changePassword();
    void rememberConditions();
    void watchLists();
    void fillStartPage();
    void showJoined(TForm *screen, packet::PacketPtr rows, int batches);
    void pasteBills();
    void useGrid(TDBGridEh *grid);
    void showRows();
    QObject *queryButton() const;

    void createCommands();
    void createScreenMenus();
    void createWindowTabs();
    void createStartPage();
    QAction *createAction(const Command &command);
    void claimShortcuts();
    void listWindows();
    void listConditions();
    void updateCommands();

    void exportAsking();
    void exportAgain();
    QString exportName() const;
    void tellFailure(const TForm &screen);
    enum class Answer { None, Came };
    void enterAnswer(QWidget *before, Answer answer);
    void showResultPage(int number);
    void turnResultPage(int step);
    void openCell();
    void goBack();
    void enterRows();
    void enterFoundRows();
    void enterWaybillBox();
    void openTracks(const QStringList &numbers);
    void openBoxedTrack(const QStringList &numbers);
    void offerTracks(QMenu *menu);
    void pinResult();
    void compareResult();
    void compareWith(const PinnedResult &pinned);
    QList<Shortcut> shortcuts() const;
    void useShortcuts(const QList<Shortcut> &shortcuts);
    void showHelp();
    QString keysAsPage() const;
    void openCounted(const DayCount &count);
    void showShortcuts();
    void showAbout();
    void saveDiagnostics();

    qulonglong globalDataSets() const { return reinterpret_cast<quintptr>(&m_data.dataSets()); }
    qulonglong globalValues() const { return reinterpret_cast<quintptr>(&m_data.values()); }
    double serverDateTime() const;
    QDateTime serverTime() const;

    void keepPlace() const;

    const Options m_options;
    const Diagnostics m_diagnostics;
    QElapsedTimer m_sinceStart;
    const std::shared_ptr<Connections> m_connections;
    Login m_login;
    TSocketConnectionEx m_host;
    TSocketConnectionEx m_second;
    HostData m_data;
    std::unique_ptr<TLibrary> m_library;
    WaybillTracks m_tracks;

    QPointer<TDBGridEh> m_grid; ///< the current one
    QPointer<TDataSource> m_gridSource; ///< what it shows
    QList<std::pair<QAction *, const Command *>> m_actions;
    QMenu *m_viewMenu = nullptr;
    QMenu *m_windowMenu = nullptr;
    QList<QAction *> m_windowActions; ///< one for each open screen, at the end of the menu
    QMenu *m_conditionMenu = nullptr;
    QList<QAction *> m_conditionActions; ///< one for each named set, at the end of the menu
    StartPage *m_startPage = nullptr;
    std::unique_ptr<StartDesk> m_startDesk;
    HelpWindow *m_help = nullptr; ///< made when first asked for
    WindowTabs *m_tabs = nullptr;
    WaybillBox *m_waybillBox = nullptr;
    QPointer<TForm> m_boxedTrack; ///< opened last from the box
    QToolBar *m_tabStrip = nullptr; ///< holds the tabs; there only while there are several
    StatusLine *m_status;
    QTimer m_clock;
    QTimer m_rowsLater; ///< tells of changed rows when they have settled
    AskedConditions m_asked;
    std::unique_ptr<ConditionMemory> m_memory;
    std::unique_ptr<BillLists> m_bills;
    int m_failures = 0; ///< that reached the application object so far
};

} // namespace client
