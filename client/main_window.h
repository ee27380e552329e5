#pragma once

#include "client/host_data.h"
#include "client/options.h"
#include "platform/remote/socket_connection.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/library_loader.h"

#include <QTimer>

class QAction;
class QLabel;
class QMenu;
class QToolBar;
class TDBGridEh;

namespace engine {
class Engine;
}

/// The host: publishes its datasets and values, opens the plug-in's screens as child windows and offers the commands that work
/// on the current one.
class MainWindow : public TMainForm {
    Q_OBJECT
    Q_PROPERTY(qulonglong GlobalCdsAddr READ globalDataSets)
    Q_PROPERTY(qulonglong GlobalValueAddr READ globalValues)
    Q_PROPERTY(double ServerDateTime READ serverDateTime)

public:
    /// Connects, loads the published data and the plug-in; throws what goes wrong.
    explicit MainWindow(const Options &options);
    ~MainWindow() override;

    Q_INVOKABLE void ResetSearch(QObject *grid);
    qintptr perform(int message, quintptr form, qintptr second) override;

    /// Calls the plug-in's exec with exactly this text.
    void openScreen(const QString &formName);
    void query();
    void copy(bool titles);
    /// Writes the current grid to `fileName`; asks for a name when it is empty.
    void exportCurrent(QString fileName = {});
    bool find(const QString &text, bool forward = true);
    TDBGridEh *currentGrid() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    struct ActionRow;
    static const QList<ActionRow> &actionRows();

    void createActions();
    QAction *createAction(const ActionRow &row);
    void listWindows();
    void addScreens(QMenu *menu, const QString &name, const QString &caption);
    void createStatusBar();
    void takeGrid(TDBGridEh *grid);
    void updateCommands();
    void updateStatus();
    void findAsking();
    void findAgain(bool forward);
    void showShortcuts();
    void showAbout();

    qulonglong globalDataSets() const { return reinterpret_cast<quintptr>(&m_data.dataSets()); }
    qulonglong globalValues() const { return reinterpret_cast<quintptr>(&m_data.values()); }
    double serverDateTime() const;
    QDateTime serverTime() const;

    const Options m_options;
    std::shared_ptr<engine::Engine> m_engine;
    TSocketConnectionEx m_host;
    TSocketConnectionEx m_second;
    HostData m_data;
    std::unique_ptr<TLibrary> m_library;
    QPointer<TDBGridEh> m_grid;
    QMetaObject::Connection m_gridRows;
    QString m_findText;
    QTimer m_tick;
    qint64 m_serverAhead; ///< milliseconds that the server's clock is ahead of ours
    QList<QAction *> m_formActions; ///< need a current form
    QList<QAction *> m_gridActions; ///< need a current grid
    QMenu *m_windowMenu = nullptr;
    QList<QAction *> m_windowActions; ///< one for each open form
    QLabel *m_rightsLabel = nullptr;
    QLabel *m_rowsLabel = nullptr;
    QLabel *m_timeLabel = nullptr;
};
