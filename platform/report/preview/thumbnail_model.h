#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QPixmap>

namespace report {

class PageView;

/// The pages as small pictures with their numbers, drawn when they are seen.
class ThumbnailModel : public QAbstractListModel {
    Q_OBJECT

public:
    ThumbnailModel(PageView &view, QObject *parent);

    void setPageCount(int count);
    void reset();
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    PageView &m_view;
    int m_count = 0;
    mutable QCache<int, QPixmap> m_pictures { 200 };
};

} // namespace report
