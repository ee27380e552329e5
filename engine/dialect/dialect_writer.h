#pragma once

#include "engine/gate/row_rules.h"

namespace engine {

/// Gathers what is to be changed in a statement and then writes it out.
class DialectWriter {
public:
    /// `helpers` stands before the name of every helper function; `reading` is null where no rules of tables apply.
    DialectWriter(std::string_view sql, std::string_view helpers, const gate::Reading *reading)
        : m_sql(sql)
        , m_helpers(helpers)
        , m_reading(reading)
    {
    }

    void open(std::uint32_t position, std::string text) { add(position, 0, Placement::Open, std::move(text)); }
    void close(std::uint32_t position, std::string text) { add(position, 0, Placement::Close, std::move(text)); }
    void replace(const gate::Annotation &annotation, std::string text)
    {
        add(annotation.begin, annotation.end - annotation.begin, Placement::Replace, std::move(text));
    }
    void wrap(const gate::Annotation &annotation, std::string before, std::string after)
    {
        open(annotation.begin, std::move(before));
        close(annotation.end, std::move(after));
    }
    /// Puts what a rule selects in place of its table. `table` is the table's name for the database, `last` what keeps the database from
    /// computing other conditions first, `condition` the rule's own in the words of the database.
    void writeTable(const gate::Annotation &annotation, const gate::RowRule &rule, const std::string &table, std::string_view last,
        const std::string &condition);
    /// A value of the reader's.
    void writeValue(const gate::Annotation &annotation);
    /// What every database but Oracle has to be told in the same way. Throws Error(Refused) for a use of rownum that none
    /// can express.
    void writeCommon(const gate::Annotation &annotation);

    std::string_view partOf(const gate::Annotation &annotation) const
    {
        return m_sql.substr(annotation.begin, annotation.end - annotation.begin);
    }
    /// The whole statement as it has become.
    std::string text();

private:
    enum class Placement : std::uint8_t { Close, Open, Replace };
    struct Edit {
        std::uint32_t position;
        std::uint32_t removed;
        Placement placement;
        std::uint32_t order; ///< among edits of one place: what closes comes inner first, what opens outer first
        std::string text;
    };
    void add(std::uint32_t position, std::uint32_t removed, Placement placement, std::string text);
    std::string call(std::string_view helper) const { return std::string(m_helpers).append(helper) + '('; }
    std::string numberOf(std::string_view literal) const;

    std::string_view m_sql;
    std::string_view m_helpers;
    const gate::Reading *m_reading;
    std::vector<Edit> m_edits;
};

} // namespace engine
