#include "client/start_page.h"

#include "client/login.h"
#include "client/screen_list.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>

#include <algorithm>
#include <utility>

using namespace platform;

namespace client {
namespace {

constexpr int columnGap = 72;
const QString pinTarget = QStringLiteral("pin:");
const QString countTarget = QStringLiteral("count:");
const QString onTarget = QStringLiteral("counts:on");
const QString offTarget = QStringLiteral("counts:off");
const QString gap = QStringLiteral("&nbsp;&nbsp; ");

QLabel *heading(const QString &text, int percent)
{
    auto *label = plainLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * percent / 100);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QString link(const QString &target, const QString &text, const QString &tip = {})
{
    return QStringLiteral("<a href='%1' title='%3' style='text-decoration:none'>%2</a>")
        .arg(target, text.toHtmlEscaped(), tip.toHtmlEscaped());
}

bool hasAny(const ScreenGroup &group, const Login &login)
{
    return std::ranges::any_of(
        group.screens, [&login](const ScreenItem &screen) { return !login.rightsTo(screen.name.toString()).isEmpty(); });
}

} // namespace

StartPage::StartPage(const Login &login)
    : m_login(login)
    , m_favouriteRow(new QLabel)
    , m_recentRow(new QLabel)
    , m_countRow(new QLabel)
{
    auto *layout = new QGridLayout(this);
    layout->setHorizontalSpacing(columnGap);
    layout->addWidget(heading(QApplication::applicationName(), 180), 1, 1, 1, -1, Qt::AlignLeft);
    layout->addWidget(plainLabel(QStringLiteral("请选择要打开的窗口，☆ 放入常用")), 2, 1, 1, -1, Qt::AlignLeft);
    int row = 3;
    for (QLabel *label : { m_favouriteRow, m_recentRow, m_countRow }) {
        label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        label->setTextFormat(Qt::RichText);
        label->setWordWrap(true);
        label->hide();
        handle(label, &QLabel::linkActivated, this, &StartPage::follow);
        layout->addWidget(label, row++, 1, 1, -1);
    }
    layout->setRowMinimumHeight(row++, columnGap / 3);
    int column = 1;
    for (const ScreenGroup &group : screenGroups) {
        if (!hasAny(group, login))
            continue;
        layout->addWidget(heading(group.menu.toString().section(u'(', 0, 0), 120), row, column);
        auto *label = new QLabel;
        label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        m_groups.append({ label, &group });
        layout->addWidget(label, row + 1, column++, Qt::AlignTop);
        handle(label, &QLabel::linkActivated, this, &StartPage::follow);
    }
    for (const int edge : { 0, column })
        layout->setColumnStretch(edge, 1);
    layout->setRowStretch(0, 2);
    layout->setRowStretch(row + 2, 3);
    showGroups();
}

void StartPage::showGroups()
{
    for (const auto &[label, group] : std::as_const(m_groups)) {
        QString text;
        for (const ScreenItem &screen : group->screens) {
            const QString name = screen.name.toString();
            if (m_login.rightsTo(name).isEmpty())
                continue;
            const bool liked = m_favourites.contains(name);
            text += u"<p style='line-height:130%'>" + link(name, screen.caption.toString()) + u"&nbsp; "
                + link(pinTarget + name, liked ? QStringLiteral("★") : QStringLiteral("☆"),
                    liked ? QStringLiteral("从常用里拿掉") : QStringLiteral("放入常用"))
                + u"</p>";
        }
        label->setText(text);
    }
}

void StartPage::showRow(QLabel *label, const QString &heading, const QStringList &screens)
{
    QStringList links;
    for (const QString &screen : screens) {
        const ScreenItem *item = screenItem(screen);
        if (item && !m_login.rightsTo(screen).isEmpty())
            links.append(link(screen, item->caption.toString()));
    }
    label->setText(u"<b>" + heading + u"</b>" + gap + links.join(gap));
    label->setVisible(!links.isEmpty());
}

void StartPage::showFavourites(const QStringList &screens)
{
    m_favourites = screens;
    showRow(m_favouriteRow, QStringLiteral("常用"), screens);
    showGroups();
}

void StartPage::showRecent(const QStringList &screens) { showRow(m_recentRow, QStringLiteral("最近使用"), screens); }

void StartPage::showCounts(const QString &heading, const QStringList &captions)
{
    m_countHeading = heading;
    m_captions = captions;
    m_numbers.clear();
    m_reasons.clear();
    showCountTexts();
}

void StartPage::showCount(int index, qint64 number)
{
    m_numbers[index] = QLocale(QLocale::Chinese, QLocale::China).toString(number);
    showCountTexts();
}

void StartPage::showFailure(int index, const QString &reason)
{
    m_reasons[index] = reason;
    showCountTexts();
}

void StartPage::showCountTexts()
{
    QString text;
    QStringList failures;
    for (int index = 0; index < int(m_captions.size()); ++index) {
        const QString number = m_numbers.value(index, m_reasons.contains(index) ? QStringLiteral("—") : QStringLiteral("…"));
        text += link(countTarget + QString::number(index), m_captions[index] + u' ' + number) + gap;
        if (m_reasons.contains(index))
            failures.append(m_captions[index] + u"：" + m_reasons[index]);
    }
    m_countRow->setText(m_captions.isEmpty()
            ? link(onTarget, QStringLiteral("显示昨天本站的几个数"))
            : QString(u"<b>" + m_countHeading.toHtmlEscaped() + u"</b>" + gap + text + link(offTarget, QStringLiteral("不再显示"))));
    m_countRow->setToolTip(failures.isEmpty() ? QString() : plainTip(failures.join(u'\n')));
    m_countRow->show();
}

void StartPage::follow(const QString &target)
{
    if (target == onTarget || target == offTarget)
        return Q_EMIT countsSwitched(target == onTarget);
    if (target.startsWith(countTarget))
        return Q_EMIT countWanted(target.mid(countTarget.size()).toInt());
    if (!target.startsWith(pinTarget))
        return Q_EMIT wanted(target);
    const QString screen = target.mid(pinTarget.size());
    if (m_favourites.removeAll(screen) == 0)
        m_favourites.append(screen);
    showFavourites(m_favourites);
    Q_EMIT favouritesChanged(m_favourites);
}

} // namespace client
