#pragma once

#include "guest/track.h"
#include "platform/dataset/client_data_set.h"
#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

class QLineEdit;

namespace guest {

/// The customer query of some waybills: where the parcel is, the waybill as entered, and its track; with several waybills a list
/// of them stands on the left. Notifies the host as its screens do, so that the host's commands work on it.
class TrackWindow : public TForm {
    Q_OBJECT
    Q_PROPERTY(QObject *QueryButton READ queryButton)

public:
    /// `numbers` is not empty. The servers stay the host's; one that is gone is asked no more.
    TrackWindow(TComponentOwner *owner, const QStringList &numbers, const QList<TCustomRemoteServer *> &servers);
    ~TrackWindow() override;

    PUBLISHED(QLabel, positionLabel);
    PUBLISHED(QPushButton, refreshButton);
    PUBLISHED(QPushButton, copyButton);
    PUBLISHED(TDBGridEh, billsGrid);
    PUBLISHED(TDBGridEh, trackGrid);
    PUBLISHED(TClientDataSetEx, cdsBills);
    PUBLISHED(TClientDataSetEx, cdsTrack);

    /// Asks the servers anew; the waybill in front stays. Throws what the query throws, and the window keeps what it shows.
    void refresh();
    /// Puts the whole track in front on the clipboard as text.
    void copyTrack() const;

protected:
    void FormShow() override;
    void FormActivate() override;
    void FormClose(TCloseAction &action) override;
    void FormKeyDown(int key, Qt::KeyboardModifiers modifiers) override;

private:
    QObject *queryButton() const { return refreshButton; }
    void layOut();
    QWidget *createHead();
    QGroupBox *createBillBox();
    void designGrids();
    void showBills();
    void showTrack();
    const Track *currentTrack() const;
    void colourTrackCell(int row, platform::CellParameters &parameters) const;

    const QStringList m_numbers;
    QList<QPointer<TCustomRemoteServer>> m_servers;
    QList<Track> m_tracks; ///< in the order of cdsBills
    QGroupBox *m_billBox = nullptr;
    QList<QLineEdit *> m_billValues; ///< in the order of billFields()
    TDataSource *m_billsSource;
    TDataSource *m_trackSource;
};

/// Closes every window that there is, at once.
void closeTrackWindows();

} // namespace guest
