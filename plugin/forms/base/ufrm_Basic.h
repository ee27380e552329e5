#pragma once

#include "platform/dataset/client_data_set.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/published.h"
#include "plugin/view/frame_DataView.h"

#include <QAbstractButton>

/// The contract between a screen and the host: tells it when the screen is created, activated and closed, what is current on it,
/// and guards unsaved edits. Every client dataset of a screen runs over the host's connection.
class Tfrm_Basic : public TForm {
    Q_OBJECT
    Q_PROPERTY(bool Right1 MEMBER Right1)
    Q_PROPERTY(bool Right2 MEMBER Right2)
    Q_PROPERTY(bool Right3 MEMBER Right3)
    Q_PROPERTY(QObject *CurrentView READ currentView)
    Q_PROPERTY(QObject *CurrentDataSet READ currentDataSet)
    Q_PROPERTY(QObject *QueryButton READ queryButton)

public:
    using TForm::TForm;
    ~Tfrm_Basic() override;

    /// From now on activation does not notify the host and closing asks nothing.
    void SetSuppressHostNotify() { SuppressHostNotify = true; }
    /// The library's variable that holds this screen; set to null when the screen closes.
    void SetFormVariable(Tfrm_Basic **variable) { FormVariable = variable; }
    /// Takes the first three characters of `text`, each "1" for granted.
    void SetRights(const QString &text);
    void SetWorkContext(TDataView *view, TClientDataSetEx *dataSet, QAbstractButton *button, QObject *extra);

    /// Runs once, right after the screen has been constructed: tells the host and gives everything its first value.
    virtual void FormCreate();

protected:
    void FormActivate() override;
    void FormClose(TCloseAction &action) override;
    void FormKeyDown(int key, Qt::KeyboardModifiers modifiers) override;

private:
    QObject *currentView() const { return CurrentView; }
    QObject *currentDataSet() const { return CurrentDataSet; }
    QObject *queryButton() const { return QueryButton; }
    void SetCurrentView(TDataView *view);
    void resetSearch() const;
    void FormDestroy();

    bool SuppressHostNotify = false;
    TDataView *CurrentView = nullptr;
    TClientDataSetEx *CurrentDataSet = nullptr;
    QAbstractButton *QueryButton = nullptr;
    QObject *CurrentExtra = nullptr;
    Tfrm_Basic **FormVariable = nullptr;
    bool Right1 = false;
    bool Right2 = false;
    bool Right3 = false;
    platform::PublishedMethod ResetSearch;
};
