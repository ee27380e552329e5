#include "client/start_page.h"

#include "client/login.h"
#include "client/screen_list.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>

using namespace platform;

namespace client {
namespace {

constexpr int columnGap = 72;

QLabel *heading(const QString &text, int percent)
{
    auto *label = plainLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * percent / 100);
    font.setBold(true);
    label->setFont(font);
    return label;
}

/// Empty when the login has none of them.
QString linksOf(const ScreenGroup &group, const Login &login)
{
    QString text;
    for (const ScreenItem &screen : group.screens) {
        if (login.rightsTo(screen.name.toString()).isEmpty())
            continue;
        text += QStringLiteral("<p style='line-height:130%'><a href='%1' style='text-decoration:none'>%2</a></p>")
                    .arg(screen.name, screen.caption);
    }
    return text;
}

} // namespace

StartPage::StartPage(const Login &login)
{
    auto *layout = new QGridLayout(this);
    layout->setHorizontalSpacing(columnGap);
    layout->addWidget(heading(QApplication::applicationName(), 180), 1, 1, 1, -1, Qt::AlignLeft);
    layout->addWidget(plainLabel(QStringLiteral("请选择要打开的窗口")), 2, 1, 1, -1, Qt::AlignLeft);
    layout->setRowMinimumHeight(3, columnGap / 3);
    int column = 1;
    for (const ScreenGroup &group : screenGroups) {
        const QString links = linksOf(group, login);
        if (links.isEmpty())
            continue;
        layout->addWidget(heading(group.menu.toString().section(u'(', 0, 0), 120), 4, column);
        auto *label = new QLabel(links);
        label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
        layout->addWidget(label, 5, column++, Qt::AlignTop);
        handle(label, &QLabel::linkActivated, this, &StartPage::wanted);
    }
    for (const int edge : { 0, column })
        layout->setColumnStretch(edge, 1);
    layout->setRowStretch(0, 2);
    layout->setRowStretch(6, 3);
}

} // namespace client
