#pragma once

#include "platform/report/definition/template.h"
#include "platform/report/layout/add_in.h"
#include "platform/report/layout/totals.h"

#include <optional>
#include <vector>

class TDataSet;

namespace report {

/// An object whose expressions know the dataset.
struct BoundObject {
    const Object *object;
    quint16 style = 0;
    quint16 source = 0;
    int image = -1;
    Template text {};
    Template label {};
    Template value {};
    const ReportAddIn *addIn = nullptr;
};

struct BoundBand {
    const Band *band;
    bool grows = false;
    std::vector<BoundObject> objects {};
};

struct BoundGroup {
    BoundBand header;
    std::optional<BoundBand> footer {};
    Template by {};
};

/// A definition joined to a dataset: every field looked up, every total entered, every style and picture among the resources.
class BoundReport {
public:
    /// Throws Exception naming the object (and its place, when a file holds it) whose text does not fit the dataset.
    BoundReport(Definition definition, const TDataSet &rows, const QList<ReportAddIn *> &addIns, Resources &resources);
    BoundReport(const BoundReport &) = delete;

    const Definition &definition() const { return m_definition; }
    /// Null when the report has no such band; not for groups.
    const BoundBand *band(BandKind kind) const;
    const std::vector<BoundGroup> &groups() const { return m_groups; } ///< from the outermost
    Totals &totals() { return m_totals; }
    const Totals &totals() const { return m_totals; }

private:
    class Names;
    void bind(BoundBand &bound, const Band &band, int scope, Resources &resources);
    BoundObject boundObject(const Object &object, BandKind band, int scope, Resources &resources);
    Template boundTemplate(const QString &text, const QString &what, FilePosition place, BandKind band, int scope);
    int loadPicture(const Object &object, Resources &resources) const;
    [[noreturn]] void fail(const QString &what, const QString &object, FilePosition place) const;

    Definition m_definition;
    const TDataSet &m_rows;
    QList<ReportAddIn *> m_addIns;
    Totals m_totals;
    std::vector<std::pair<BandKind, BoundBand>> m_bands;
    std::vector<BoundGroup> m_groups;
};

/// The definition made smaller, all lengths and fonts alike, when a band is wider than the page allows.
Definition fittedToWidth(Definition definition);

} // namespace report
