#pragma once

#include "packet/packet.h"
#include "platform/connection/remote_server.h"
#include "platform/dataset/data_set.h"

#include <QPointer>
#include <QStringList>

#include <memory>

namespace platform {

class FilterExpression;
class RowOverlay;
class RowSnapshot;
struct OrderKey;
struct QuickFilter;
struct ValueCount;

/// An index over the shown rows of a client dataset.
struct IndexDefinition {
    QString name;
    QString fields; ///< field names joined with ";"
    QString descendingFields; ///< those of them that descend, joined with ";"
};

enum class LocateOption { Exact, CaseInsensitive, Partial };

} // namespace platform

/// A dataset held in memory: the packet as it arrived, a permutation for the index, a row list for the filter, and an
/// overlay with the edits and their change log. No cell becomes a boxed value before somebody asks for it.
class TCustomClientDataSet : public TDataSet {
    Q_OBJECT

public:
    explicit TCustomClientDataSet(QObject *parent = nullptr);
    ~TCustomClientDataSet() override;

    bool readOnly() const { return m_readOnly; }
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }

    /// The component of the same owner whose rows are fetched when the dataset opens; "" when there is none.
    const QString &providerName() const { return m_providerName; }
    void setProviderName(const QString &name) { m_providerName = name; }

    /// The rows of the dataset as one packet, edits included; null while closed. Cheap while nothing was edited.
    packet::PacketPtr data() const;
    /// Opens the dataset (closing it first) on an independent copy of `data`; null closes it.
    void setData(packet::PacketPtr data);
    /// The shown rows as they are now, an edit under way included; without any while closed. Cheap: it shares the packet.
    platform::RowSnapshot snapshot() const;
    /// True when the server's row limit cut the result.
    bool truncated() const;
    QString truncationNotice() const override;
    /// Removes all rows and the change log; the structure stays. An edit under way is dropped.
    void emptyDataSet();

    int recordCount() const override;
    Bookmark bookmark() const override;
    bool gotoBookmark(const Bookmark &bookmark) override;
    bool isNull(int field, int row) const override;
    QString text(int field, int row) const override;
    std::optional<packet::Decimal> number(int field, int row) const override;
    RowTest textTest(int field, const platform::TextPattern &pattern) const override;
    packet::Decimal sum(int field) const override;

    /// Makes the first shown row current whose fields (names joined with ";") equal `values`; false when there is none.
    /// "" equals null. An edit under way is posted first.
    [[nodiscard]] bool locate(
        const QString &fields, const QStringList &values, platform::LocateOption option = platform::LocateOption::Exact);

    /// Without rows, edit() appends one. While an edit is under way it goes on.
    void edit();
    /// The new row stands last until it is posted; then index and filter place it.
    void append();
    void post();
    void cancel();
    void deleteRow();
    int changeCount() const; ///< rows inserted, edited or deleted since the data came or was merged
    void mergeChangeLog();

    /// For example "type= '同省'" or "site_name in ('A','B')"; read when filtering is on. Throws DataSetError naming the place.
    const QString &filter() const { return m_filter; }
    void setFilter(const QString &filter);
    bool filtered() const { return m_filtered; }
    void setFiltered(bool filtered); ///< recorded by the application object as "filter"

    /// What a person narrows the rows to; it goes with the rows when the dataset closes or is emptied. The dataset's own filter and its
    /// index work on beneath it, and taking it back costs no search.
    const platform::QuickFilter &quickFilter() const { return *m_quickFilter; }
    void setQuickFilter(const platform::QuickFilter &filter);
    int unnarrowedCount() const override;
    /// What stands in a field of the rows that would be shown with `filter` in place of the quick filter; only the first `most`
    /// different texts are counted.
    std::vector<platform::ValueCount> valueCounts(int field, const platform::QuickFilter &filter, std::size_t most) const;

    const QList<platform::IndexDefinition> &indexDefinitions() const { return m_indexes; }
    void addIndex(const platform::IndexDefinition &index); ///< throws DataSetError for an unknown field or a name in use
    void deleteIndex(const QString &name);
    const QString &indexName() const { return m_indexName; }
    void setIndexName(const QString &name); ///< "" returns to the order of the data

protected:
    void load(packet::PacketPtr packet);
    /// Fetches the provider's rows; throws DataSetError when there is none.
    void doOpen() override;
    void doClose() override;
    void setCell(int field, const QString &text) override;
    void doPost() override;

private:
    std::optional<quint32> sourceRow(int row) const;
    int shownRow(quint32 source) const; ///< -1 when it is not shown
    void requireWritable() const;
    std::vector<platform::OrderKey> orderKeys() const;
    std::unique_ptr<platform::FilterExpression> compiled(const QString &filter) const; ///< null while closed and for a blank filter
    void rebuildRows();
    void narrowRows();
    void showAgain();
    void showCurrent(const Bookmark &current);

    std::unique_ptr<platform::RowOverlay> m_overlay; ///< the packet and its edits; null while closed
    std::unique_ptr<platform::FilterExpression> m_filterExpression; ///< null while nothing is filtered
    std::vector<quint32> m_rows; ///< source rows in shown order, unless m_allRows
    bool m_allRows = true; ///< the shown rows are the source rows, one for one
    /// The rows as they are without the quick filter; only while there is one.
    struct WideRows {
        bool all;
        std::vector<quint32> rows; ///< unless `all`
    };
    std::optional<WideRows> m_wideRows;
    std::unique_ptr<platform::QuickFilter> m_quickFilter;
    int m_rowBeforeAppend = -1;
    QString m_filter;
    bool m_filtered = false;
    QList<platform::IndexDefinition> m_indexes;
    QString m_indexName;
    QString m_providerName;
    bool m_readOnly = false;
};

/// A client dataset whose command text is run by a remote server; the whole result arrives as one packet.
class TClientDataSetEx : public TCustomClientDataSet {
    Q_OBJECT

public:
    using TCustomClientDataSet::TCustomClientDataSet;

    TCustomRemoteServer *remoteServer() const { return m_remoteServer; }
    void setRemoteServer(TCustomRemoteServer *server);
    const QString &commandText() const { return m_commandText; }
    void setCommandText(const QString &text) { m_commandText = text; }
    int tag() const { return m_tag; }
    void setTag(int tag) { m_tag = tag; }

protected:
    /// Runs the command text, unless there is a provider; an empty one too, which the server refuses. Throws what the server throws, and
    /// DataSetError when there is no server; the dataset stays closed then.
    void doOpen() override;

private:
    QPointer<TCustomRemoteServer> m_remoteServer;
    QString m_commandText;
    int m_tag = 0;
};
