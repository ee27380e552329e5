#include "plugin/view/frame_InputList.h"

#include "platform/grid/grid_zoom.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/refusal.h"
#include "platform/toolkit/screen.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QVBoxLayout>

#include <algorithm>

using namespace platform;
using namespace plugin;

namespace {

constexpr int frameWidth = 130;
constexpr int headHeight = 20;
constexpr int buttonWidth = 48;
constexpr int fontPixels = 12;
constexpr int mostLines = 800;

/// Without the blanks and control characters at both ends.
QString trimmed(const QString &text)
{
    const auto counts = [](QChar character) { return character > u' '; };
    const auto first = std::find_if(text.begin(), text.end(), counts);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), counts).base();
    return text.mid(first - text.begin(), last - first);
}

/// Whether a character parts two numbers on one line of a sheet or of a message.
bool isSeparator(QChar character) { return QStringView(u"\t ,;，；、　").contains(character) || character == QChar::Nbsp; }

bool isInvisible(QChar character) { return QStringView(u"\u200B\u200C\u200D\u2060\uFEFF").contains(character); }

/// A number a line, with plain digits and without what programs hide in a copied text.
QString numbersByLine(const QString &text)
{
    QString lines;
    bool parted = false;
    for (const QChar character : text) {
        if (isInvisible(character))
            continue;
        if (isSeparator(character)) {
            parted = true;
            continue;
        }
        if (parted && !lines.isEmpty() && !lines.endsWith(u'\n') && character != u'\n' && character != u'\r')
            lines += u'\n';
        parted = false;
        const bool fullWidth = character >= u'！' && character <= u'～';
        lines += fullWidth ? QChar(char16_t(character.unicode() - u'！' + u'!')) : character;
    }
    return lines;
}

} // namespace

namespace plugin {

BillMemo::BillMemo(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setInputMethodHints(Qt::ImhLatinOnly | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    setLineWrapMode(NoWrap);
    setTabChangesFocus(true);
    setFocusPolicy(Qt::ClickFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

QStringList BillMemo::lines() const
{
    QStringList all = toPlainText().split(u'\n');
    if (all.last().isEmpty())
        all.removeLast();
    return all;
}

void BillMemo::keyPressEvent(QKeyEvent *event)
{
    if (!hasFocus() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        focusControl(this);
    QPlainTextEdit::keyPressEvent(event);
}

void BillMemo::insertFromMimeData(const QMimeData *source)
{
    if (source->hasText())
        insertPlainText(numbersByLine(source->text()));
    ensureCursorVisible();
}

} // namespace plugin

TInputList::TInputList()
{
    takeTextScale();
    CheckBox1->setText(QStringLiteral("按单号查询"));
    CheckBox1->setFocusPolicy(Qt::ClickFocus);
    SpeedButton1->setText(QStringLiteral("清空"));
    SpeedButton1->setAutoRaise(true);
    SpeedButton1->setFocusPolicy(Qt::NoFocus);
    Memo1->setAccessibleName(QStringLiteral("运单编号列表"));
    Memo1->setPlaceholderText(QStringLiteral("每行一个运单编号"));

    auto *head = new QHBoxLayout(Panel1);
    head->setContentsMargins(0, 0, 0, 0);
    head->setSpacing(0);
    head->addWidget(CheckBox1, 1);
    head->addWidget(SpeedButton1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 0, 4);
    layout->setSpacing(2);
    layout->addWidget(Panel1);
    layout->addWidget(Memo1, 1);
    handle(SpeedButton1, &QToolButton::clicked, this, &TInputList::SpeedButton1Click);
}

void TInputList::GetBillList(QString &BillList)
{
    BillList.clear();
    const QString title = QStringLiteral("详细：");
    if (trimmed(Memo1->toPlainText()).isEmpty()) {
        refuse(u"没有输入任何运单编号！", title);
        return;
    }
    const QStringList lines = Memo1->lines();
    if (lines.size() > mostLines) {
        refuse(QStringLiteral("您输入了\"%1\"个单号，最多只能输入\"%2\"个单号！").arg(lines.size()).arg(mostLines), title);
        return;
    }
    QStringList numbers;
    for (const QString &line : lines)
        numbers.prepend(trimmed(line));
    BillList = u"('" + numbers.join(QStringLiteral("','")) + u"')";
}

/// As designed in pixels, at the size of text that the person has chosen.
void TInputList::takeTextScale()
{
    QFont song(QStringLiteral("宋体"));
    song.setPixelSize(scaledPixels(fontPixels));
    setFont(song);
    setFixedWidth(scaledPixels(frameWidth));
    Panel1->setFixedHeight(scaledPixels(headHeight));
    SpeedButton1->setFixedWidth(scaledPixels(buttonWidth));
}

void TInputList::changeEvent(QEvent *event)
{
    TFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange)
        takeTextScale();
}

void TInputList::SpeedButton1Click() { Memo1->clear(); }
