#pragma once

#include "client/export/asked_conditions.h"
#include "client/host_data.h"
#include "client/options.h"
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
class StartPage;
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
    /// Loads the published data and the plug-in; throws what goes wrong.
    MainWindow(const Options &options, std::unique_ptr<Connections> connections);
    ~MainWindow() override;

    Q_INVOKABLE void ResetSearch(QObject *grid);
    qintptr perform(int message, quintptr form, qintptr second) override;

    /// Calls the plug-in's exec with exactly this text.
    void openScreen(const QString &formName);
    /// Presses the query button of the screen in front; throws Exception when there is none.
    void query();
    /// Shows the current grid as it would be printed.
    void print();
    /// Writes what a grid shows, with its screen's conditions, in the background of a wait window; returns the number of rows.
    int exportTo(const TDBGridEh &grid, const ExportTarget &target);
    TDBGridEh *currentGrid() const { return m_grid; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    struct Command;
    static const QList<Command> &commands();

    void loadPlugin();
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
    void updateCommands();

    void exportAsking();
    void showShortcuts();
    void showAbout();

    qulonglong globalDataSets() const { return reinterpret_cast<quintptr>(&m_data.dataSets()); }
    qulonglong globalValues() const { return reinterpret_cast<quintptr>(&m_data.values()); }
    double serverDateTime() const;
    QDateTime serverTime() const;

    const Options m_options;
    QElapsedTimer m_sinceStart;
    const std::unique_ptr<Connections> m_connections;
    TSocketConnectionEx m_host;
    TSocketConnectionEx m_second;
    HostData m_data;
    std::unique_ptr<TLibrary> m_library;

    QPointer<TDBGridEh> m_grid; ///< the current one
    QPointer<TDataSource> m_gridSource; ///< what it shows
    QList<std::pair<QAction *, const Command *>> m_actions;
    QMenu *m_windowMenu = nullptr;
    QList<QAction *> m_windowActions; ///< one for each open screen, at the end of the menu
    StartPage *m_startPage = nullptr;
    WindowTabs *m_tabs = nullptr;
    QToolBar *m_tabStrip = nullptr; ///< holds the tabs; there only while there are several
    StatusLine *m_status;
    QTimer m_clock;
    AskedConditions m_asked;
    QString m_exportDirectory;
    QString m_exportFilter; ///< chosen last
};

} // namespace client
