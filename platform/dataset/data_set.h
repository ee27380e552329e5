#pragma once

#include "packet/decimal.h"
#include "platform/dataset/text_pattern.h"
#include "platform/toolkit/exception.h"

#include <QDateTime>
#include <QHash>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class TDataSet;

namespace platform {

enum class DataSetState { Inactive, Browse, Edit, Insert, SetKey };
enum class FieldType { Text, Integer, Decimal, Float, DateTime };

class DataSetError : public Exception {
public:
    using Exception::Exception;
};

} // namespace platform

/// One column of an open dataset, seen at its current row. Owned by the dataset, valid until it closes.
class TField {
public:
    TField(TDataSet *dataSet, int index, QString name, platform::FieldType type, int scale = 0)
        : m_dataSet(dataSet)
        , m_index(index)
        , m_name(std::move(name))
        , m_type(type)
        , m_scale(scale)
    {
    }

    const QString &fieldName() const { return m_name; }
    int index() const { return m_index; }
    platform::FieldType type() const { return m_type; }
    int scale() const { return m_scale; } ///< Decimal: the most digits behind the point in the rows as they came
    /// Null also when the dataset has no rows.
    bool isNull() const;
    /// As a person reads it: numbers without trailing zeros, times as "yyyy-mm-dd hh:mm:ss", null as "".
    QString asString() const;
    packet::Decimal asDecimal() const; ///< 0 for null; throws DataSetError for a text that is no number
    /// Only in edit or insert state; throws DataSetError otherwise or when the text does not fit the type. "" is null.
    void setAsString(const QString &text);
    void clear() { setAsString({}); }

private:
    TDataSet *m_dataSet;
    int m_index;
    QString m_name;
    platform::FieldType m_type;
    int m_scale;
};

/// A table of rows with a current row. Rows are counted from 0 in their shown order.
class TDataSet : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool active() const { return m_state != platform::DataSetState::Inactive; }
    void setActive(bool active);
    void open() { setActive(true); }
    void close() { setActive(false); }
    platform::DataSetState state() const { return m_state; }
    bool isEditing() const { return m_state >= platform::DataSetState::Edit; }

    int fieldCount() const { return int(m_fields.size()); }
    TField *field(int index) const { return m_fields[std::size_t(index)].get(); }
    TField *findField(QStringView name) const; ///< case ignored; null when there is none
    TField *fieldByName(QStringView name) const; ///< throws DataSetError naming field and dataset

    virtual int recordCount() const = 0; ///< shown rows
    bool isEmpty() const { return recordCount() == 0; }
    /// "已截断：只有前 20,000 行" when a limit of the server cut the rows, "" otherwise: what every paper and file has to say.
    virtual QString truncationNotice() const { return {}; }
    /// Rows that would be shown if no person had narrowed them.
    virtual int unnarrowedCount() const { return recordCount(); }
    /// "已筛选：106 行中的 12 行" while a person has hidden some, "" otherwise.
    QString filterNotice() const;
    int recordIndex() const { return m_recordIndex; } ///< the current row, -1 without rows
    bool bof() const { return m_ends.bof; }
    bool eof() const { return m_ends.eof; }
    void first();
    void last();
    void next() { moveBy(1); }
    void prior() { moveBy(-1); }
    /// Returns by how many rows the cursor moved. A pending edit is posted first.
    int moveBy(int rows);
    void moveTo(int row);

    /// Identifies a row as long as the dataset stays open, whatever the order and the filter.
    using Bookmark = std::optional<quint32>;
    virtual Bookmark bookmark() const = 0;
    virtual bool gotoBookmark(const Bookmark &bookmark) = 0;

    /// Any cell of the shown rows.
    virtual bool isNull(int field, int row) const = 0;
    virtual QString text(int field, int row) const = 0;
    /// The cell as a number; nothing for null and for text that is no number.
    virtual std::optional<packet::Decimal> number(int field, int row) const = 0;
    /// The exact sum of a field over the shown rows; nulls and texts that are no numbers are skipped. Reads every row.
    virtual packet::Decimal sum(int field) const;
    /// Tells of shown rows whether the text of a field fits; good until the rows change.
    using RowTest = std::function<bool(int row)>;
    virtual RowTest textTest(int field, const platform::TextPattern &pattern) const;

    /// Counted: rowsChanged, rowEdited and recordMoved are held back until enableControls() has been called as often, and then
    /// sent once (held edits as rowsChanged). stateChanged is always sent.
    void disableControls() { ++m_disabled; }
    void enableControls();
    bool controlsDisabled() const { return m_disabled > 0; }

Q_SIGNALS:
    void afterOpen();
    void stateChanged();
    void rowsChanged(); ///< opened, closed, sorted, filtered, rows added or removed
    void rowEdited(int row); ///< values of one row changed
    void recordMoved(int row);

protected:
    virtual void doOpen() = 0; ///< fills m_fields; throws when it cannot
    virtual void doClose() = 0;
    /// Announces a dataset whose fields and rows have just been filled: the first row becomes current, the state Browse.
    void finishOpen();
    void requireActive() const; ///< throws DataSetError when the dataset is closed
    void postPending(); ///< posts an edit that is under way
    [[noreturn]] void fail(const QString &what) const; ///< throws DataSetError beginning with the dataset's name
    virtual void setCell(int field, const QString &text) = 0;
    virtual void doPost() = 0;
    void setState(platform::DataSetState state);
    void announceRows();
    void announceRow(int row);
    enum class Announce { Move, Rows }; ///< Rows: that the rows have changed, before the move
    /// Makes a row current, or the nearest one there is.
    void setRecord(int row, Announce announce = Announce::Move);

    std::vector<std::unique_ptr<TField>> m_fields;

private:
    friend class TField;
    struct Ends {
        bool bof;
        bool eof;
    };
    void makeCurrent(int row, Ends ends, Announce announce = Announce::Move);

    QHash<QString, TField *> m_fieldsByName; ///< by name in upper case
    platform::DataSetState m_state = platform::DataSetState::Inactive;
    int m_recordIndex = -1;
    Ends m_ends { .bof = true, .eof = true };
    int m_disabled = 0;
    bool m_heldRows = false;
    bool m_heldMove = false;
};
