#include "platform/grid/filter_bar.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

namespace platform {

namespace {

constexpr int typingPause = 150; ///< milliseconds
constexpr int textWidth = 200;
constexpr int longestText = 200;
constexpr qsizetype mostButtons = 4;
constexpr int mostLetters = 24; ///< of a button

QToolButton *button(const QString &text, const QString &toolTip)
{
    auto *made = new QToolButton;
    made->setText(QString(text).replace(u'&', QStringLiteral("&&")));
    made->setToolTip(plainTip(toolTip));
    made->setAccessibleName(toolTip);
    made->setAutoRaise(true);
    made->setFocusPolicy(Qt::NoFocus);
    return made;
}

} // namespace

FilterBar::FilterBar(QWidget *grid)
    : QWidget(grid)
    , m_text(new QLineEdit)
    , m_conditions(new QHBoxLayout)
    , m_counts(plainLabel())
{
    setAutoFillBackground(true);
    m_text->setPlaceholderText(QStringLiteral("任意列的文字、数字或拼音首字母"));
    m_text->setAccessibleName(QStringLiteral("筛选"));
    m_text->setClearButtonEnabled(true);
    m_text->setMaxLength(longestText);
    m_text->setMinimumWidth(textWidth);
    m_text->setMaximumWidth(textWidth * 2);
    m_text->installEventFilter(this);
    m_pause.setSingleShot(true);
    m_pause.setInterval(typingPause);

    QToolButton *clear = button(QStringLiteral("清除筛选"), QStringLiteral("显示全部行"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(plainLabel(QStringLiteral("筛选：")));
    layout->addWidget(m_text, 1);
    layout->addLayout(m_conditions);
    layout->addWidget(m_counts);
    layout->addWidget(clear);
    layout->addStretch();

    handle(m_text, &QLineEdit::textEdited, &m_pause, qOverload<>(&QTimer::start));
    handle(&m_pause, &QTimer::timeout, this, &FilterBar::enterText);
    handle(clear, &QToolButton::clicked, this, &FilterBar::cleared);
}

void FilterBar::beginTyping()
{
    m_text->setFocus();
    m_text->selectAll();
}

bool FilterBar::isTyping() const { return m_text->hasFocus(); }

void FilterBar::enterText()
{
    m_pause.stop();
    if (m_text->text() != m_shownText)
        Q_EMIT textEntered(m_text->text());
}

void FilterBar::showFilter(const QString &text, const QStringList &conditions, int rows, int allRows)
{
    m_shownText = text;
    if (!m_pause.isActive() && m_text->text() != text)
        m_text->setText(text);
    showConditions(conditions);
    m_counts->setText(QStringLiteral("%L1 / %L2").arg(rows).arg(allRows));
    m_counts->setAccessibleName(QStringLiteral("%1 行中的 %2 行").arg(allRows).arg(rows));
}

void FilterBar::showConditions(const QStringList &conditions)
{
    if (conditions == m_shownConditions)
        return;
    m_shownConditions = conditions;
    while (QLayoutItem *item = m_conditions->takeAt(0)) {
        item->widget()->deleteLater(); // it may be the one that was just clicked
        delete item;
    }
    for (qsizetype number = 0; number < std::min(conditions.size(), mostButtons); ++number) {
        const QString &condition = conditions[number];
        const QString shown = condition.size() > mostLetters ? condition.left(mostLetters) + u'…' : condition;
        QToolButton *chip = button(shown + QStringLiteral(" ✕"), QStringLiteral("取消条件：") + condition);
        handle(chip, &QToolButton::clicked, this, [this, number] { Q_EMIT conditionRemoved(int(number)); });
        m_conditions->addWidget(chip);
    }
    if (conditions.size() > mostButtons)
        m_conditions->addWidget(plainLabel(QStringLiteral("还有 %1 个条件").arg(conditions.size() - mostButtons)));
}

bool FilterBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut)
        guarded([this] { enterText(); });
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Escape:
        m_text->clear();
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        guarded([this] {
            enterText();
            Q_EMIT left();
        });
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

} // namespace platform
