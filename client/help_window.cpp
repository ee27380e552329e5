#include "client/help_window.h"

#include "platform/toolkit/handler.h"

#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

constexpr int generalPages = 4;
constexpr QSize windowSize(900, 640);
constexpr int listWidth = 220;

bool holdsAll(const HelpPage &page, const QStringList &words)
{
    return std::all_of(
        words.begin(), words.end(), [&page](const QString &word) { return page.markdown.contains(word, Qt::CaseInsensitive); });
}

} // namespace

HelpWindow::HelpWindow(QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_search(new QLineEdit)
    , m_list(new QListWidget)
    , m_text(new QTextBrowser)
{
    setWindowTitle(QStringLiteral("帮助"));
    resize(windowSize.boundedTo(screen()->availableSize() * 9 / 10));
    m_search->setPlaceholderText(QStringLiteral("查找帮助"));
    m_search->setAccessibleName(QStringLiteral("查找帮助"));
    m_search->setClearButtonEnabled(true);
    m_list->setAccessibleName(QStringLiteral("帮助目录"));
    m_text->setAccessibleName(QStringLiteral("帮助内容"));
    m_text->setOpenLinks(false);
    auto *contents = new QWidget;
    auto *column = new QVBoxLayout(contents);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_search);
    column->addWidget(m_list, 1);
    auto *splitter = new QSplitter;
    splitter->addWidget(contents);
    splitter->addWidget(m_text);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({ listWidth, windowSize.width() - listWidth });
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    handle(m_search, &QLineEdit::textChanged, this, &HelpWindow::narrow);
    handle(m_list, &QListWidget::currentRowChanged, this, &HelpWindow::showCurrent);
    handle(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
    narrow();
}

void HelpWindow::setKeys(const QString &markdown) { m_keys = markdown; }

QList<HelpPage> HelpWindow::pages() const
{
    QList<HelpPage> all = helpPages();
    if (!m_keys.isEmpty())
        all.insert(generalPages, { QStringLiteral("keys"), QStringLiteral("快捷键"), m_keys });
    return all;
}

void HelpWindow::narrow()
{
    const QStringList words = m_search->text().split(u' ', Qt::SkipEmptyParts);
    m_list->clear();
    for (const HelpPage &page : pages()) {
        if (!holdsAll(page, words))
            continue;
        auto *item = new QListWidgetItem(page.title, m_list);
        item->setData(Qt::UserRole, page.name);
    }
    m_list->setCurrentRow(0);
    if (m_list->count() == 0)
        m_text->setPlainText(QStringLiteral("没有找到“%1”，请换一个词。").arg(m_search->text()));
}

void HelpWindow::showPage(const QString &name)
{
    m_search->clear();
    narrow();
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(Qt::UserRole).toString() == name)
            m_list->setCurrentRow(row);
    }
    show();
    raise();
    activateWindow();
}

void HelpWindow::showCurrent()
{
    const QListWidgetItem *item = m_list->currentItem();
    if (!item)
        return;
    for (const HelpPage &page : pages()) {
        if (page.name == item->data(Qt::UserRole).toString())
            m_text->setHtml(helpHtml(page.markdown));
    }
    if (const QString word = m_search->text().section(u' ', 0, 0); !word.isEmpty())
        m_text->find(word);
}

} // namespace client
