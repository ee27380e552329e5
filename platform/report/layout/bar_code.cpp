#include "platform/report/layout/bar_code.h"

#include "platform/report/layout/text_face.h"
#include "platform/toolkit/exception.h"

#include <QHash>

#include <zint.h>

#include <algorithm>
#include <memory>

namespace report {

namespace {

const QHash<QString, int> symbologies {
    { QStringLiteral("code128"), BARCODE_CODE128 },
    { QStringLiteral("code39"), BARCODE_CODE39 },
    { QStringLiteral("ean13"), BARCODE_EANX },
    { QStringLiteral("qr"), BARCODE_QRCODE },
};

using Symbol = std::unique_ptr<zint_symbol, decltype(&ZBarcode_Delete)>;

Symbol encoded(const QString &symbology, const QString &text)
{
    Symbol symbol(ZBarcode_Create(), ZBarcode_Delete);
    symbol->symbology = symbologies.value(symbology);
    symbol->input_mode = UNICODE_MODE;
    symbol->show_hrt = 0;
    const QByteArray bytes = text.toUtf8();
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.constData());
    if (ZBarcode_Encode_and_Buffer_Vector(symbol.get(), data, int(bytes.size()), 0) >= ZINT_ERROR)
        throw Exception(QStringLiteral("“%1”不能印成条码（%2）").arg(text.left(40), QString::fromLatin1(symbol->errtxt)));
    return symbol;
}

} // namespace

void BarCodeObject::draw(const AddInTask &task, Drawing &drawing) const
{
    if (task.text.isEmpty())
        return;
    const Symbol symbol = encoded(task.object.symbology, task.text);
    const bool square = symbol->symbology == BARCODE_QRCODE;
    const bool readable = task.object.showText && !square;
    QRect bars = task.box;
    const int textHeight = readable ? lineHeight(task.object.style) : 0;
    bars.setHeight(std::max(0, bars.height() - textHeight));
    qreal across = bars.width() / qreal(symbol->vector->width);
    qreal down = bars.height() / qreal(symbol->vector->height);
    if (square)
        across = down = std::min(across, down);
    const Style ink { .fill = task.object.style.color, .lineWidth = 0 };
    for (const zint_vector_rect *bar = symbol->vector->rectangles; bar; bar = bar->next) {
        const QPointF from(qreal(bar->x) * across, qreal(bar->y) * down);
        const QPointF to = from + QPointF(qreal(bar->width) * across, qreal(bar->height) * down);
        drawing.rectangle(ink,
            QRect(bars.topLeft() + from.toPoint(), QSize(to.toPoint().x() - from.toPoint().x(), to.toPoint().y() - from.toPoint().y())));
    }
    if (!readable)
        return;
    Style style = task.object.style;
    style.alignment = Qt::AlignHCenter | Qt::AlignVCenter;
    drawing.text(style, QRect(task.box.x(), bars.y() + bars.height(), task.box.width(), textHeight), task.text);
}

} // namespace report
