#pragma once

#include "platform/dataset/client_data_set.h"
#include "tests/support/packets.h"
#include "tests/support/print_qstring.h"

#include <gmock/gmock.h>

/// The shown texts of a column, joined with "|".
inline QString shown(const TDataSet &dataSet, QStringView fieldName)
{
    QStringList texts;
    for (int row = 0; row < dataSet.recordCount(); ++row)
        texts << dataSet.text(dataSet.fieldByName(fieldName)->index(), row);
    return texts.join(u'|');
}

/// Opens the dataset on the table, either as it arrives or with every row appended by hand.
enum class Origin { Packet, Appended };
inline void fill(TCustomClientDataSet &dataSet, std::string_view table, Origin origin)
{
    dataSet.setData(packetOf(table));
    if (origin == Origin::Packet)
        return;
    TCustomClientDataSet source;
    source.setData(packetOf(table));
    dataSet.emptyDataSet();
    for (source.first(); !source.eof(); source.next()) {
        dataSet.append();
        for (int field = 0; field < source.fieldCount(); ++field)
            dataSet.field(field)->setAsString(source.field(field)->asString());
        dataSet.post();
    }
    dataSet.first();
}

template <class Work>
QString errorOf(Work &&work)
{
    try {
        work();
    } catch (const Exception &exception) {
        return exception.message();
    }
    return {};
}
