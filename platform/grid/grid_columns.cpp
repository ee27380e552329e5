#include "platform/grid/grid_columns.h"

GridColumn::GridColumn(const char *field, QStringView caption, int width, Qt::Alignment alignment)
{
    m_column.fieldName = QString::fromLatin1(field);
    m_column.caption = caption.toString();
    m_column.width = width;
    m_column.alignment = alignment;
}

GridColumn &GridColumn::sum(QStringView title)
{
    m_column.footers = { { FooterKind::StaticText, title.toString() }, { FooterKind::Sum } };
    return *this;
}

GridColumn &GridColumn::hidden()
{
    m_column.visible = false;
    return *this;
}

GridColumn &GridColumn::readOnly()
{
    m_column.readOnly = true;
    return *this;
}

GridColumn &GridColumn::checkBox()
{
    m_column.checkedKey = u'1';
    m_column.uncheckedKey = u'0';
    return *this;
}

GridColumn &GridColumn::ellipsis()
{
    m_column.ellipsis = true;
    return *this;
}

GridColumn &GridColumn::dropDown(const QStringList &fields)
{
    m_column.dropDownFields = fields;
    return *this;
}

GridColumn text(const char *field, QStringView caption, int width) { return GridColumn(field, caption, width, Qt::AlignLeft); }

GridColumn number(const char *field, QStringView caption, int width) { return GridColumn(field, caption, width, Qt::AlignRight); }

GridColumn time(const char *field, QStringView caption, int width) { return GridColumn(field, caption, width, Qt::AlignLeft); }
