#pragma once

#include "packet/packet.h"
#include "platform/dataset/client_data_set.h"
#include "platform/dataset/data_source.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/form.h"

namespace client {

/// The answers to the parts of a long list in one grid, to be read, printed and exported; with the columns of the screen's own grid.
class JoinedResult : public TForm {
    Q_OBJECT

public:
    JoinedResult(const QString &caption, const TDBGridEh &like, packet::PacketPtr rows);

    PUBLISHED(TDBGridEh, Grid);
    PUBLISHED(TDataSource, DS);
    PUBLISHED(TClientDataSetEx, cds);

protected:
    void FormActivate() override;
    void FormClose(TCloseAction &action) override;
};

} // namespace client
