#include "platform/grid/grid_columns.h"

namespace platform {

GridColumn::GridColumn(const char *field, QStringView caption, int width, Qt::Alignment alignment, NumberForm form)
{
    m_column.fieldName = QString::fromLatin1(field);
    m_column.caption = caption.toString();
    m_column.width = width;
    m_column.alignment = alignment;
    m_column.numberForm = form;
}

GridColumn &GridColumn::sum(QStringView title, Qt::Alignment alignment)
{
    m_column.footers = { { FooterKind::StaticText, title.toString(), alignment }, { FooterKind::Sum, {}, alignment } };
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

GridColumn number(const char *field, QStringView caption, int width)
{
    return GridColumn(field, caption, width, Qt::AlignRight, NumberForm::Quantity);
}

GridColumn money(const char *field, QStringView caption, int width)
{
    return GridColumn(field, caption, width, Qt::AlignRight, NumberForm::Money);
}

GridColumn time(const char *field, QStringView caption, int width) { return GridColumn(field, caption, width, Qt::AlignLeft); }

GridColumns centredFooters(GridColumns columns)
{
    for (Column &column : columns) {
        for (ColumnFooter &footer : column.footers)
            footer.alignment = Qt::AlignHCenter;
    }
    return columns;
}

} // namespace platform
