#include "platform/report/preview/thumbnail_model.h"

#include "platform/report/preview/page_view.h"

namespace report {

namespace {

constexpr QSize thumbnailSize(110, 150);

} // namespace

ThumbnailModel::ThumbnailModel(PageView &view, QObject *parent)
    : QAbstractListModel(parent)
    , m_view(view)
{
}

void ThumbnailModel::setPageCount(int count)
{
    if (count <= m_count)
        return;
    beginInsertRows({}, m_count, count - 1);
    m_count = count;
    endInsertRows();
}

void ThumbnailModel::reset()
{
    beginResetModel();
    m_count = 0;
    m_pictures.clear();
    endResetModel();
}

int ThumbnailModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : m_count; }

QVariant ThumbnailModel::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DisplayRole)
        return QString::number(index.row() + 1);
    if (role == Qt::SizeHintRole)
        return thumbnailSize + QSize(16, 28);
    if (role != Qt::DecorationRole)
        return {};
    if (!m_pictures.contains(index.row()))
        m_pictures.insert(index.row(), new QPixmap(QPixmap::fromImage(m_view.thumbnail(index.row(), thumbnailSize))));
    const QPixmap *picture = m_pictures.object(index.row());
    return picture ? QVariant(*picture) : QVariant();
}

} // namespace report
