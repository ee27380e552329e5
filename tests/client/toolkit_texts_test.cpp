#include "client/toolkit_texts.h"

#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCalendarWidget>
#include <QColorDialog>
#include <QComboBox>
#include <QFileDialog>
#include <QFontComboBox>
#include <QFontDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabWidget>
#include <QTimer>

#include <functional>
#include <memory>

using namespace client;

namespace {

/// What a person can read in a window, tool tips and lists included.
QStringList textsOf(QWidget &window)
{
    QStringList texts { window.windowTitle() };
    const auto add = [&texts](const QString &text) { texts.append(text); };
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        add(widget->toolTip());
        add(widget->statusTip());
        for (const QAction *action : widget->actions())
            texts << action->text() << action->toolTip();
        if (const auto *label = qobject_cast<const QLabel *>(widget))
            add(label->text());
        else if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
            add(button->text());
        else if (const auto *box = qobject_cast<const QGroupBox *>(widget))
            add(box->title());
        else if (const auto *spin = qobject_cast<const QSpinBox *>(widget))
            texts << spin->prefix() << spin->suffix();
        else if (const auto *line = qobject_cast<const QLineEdit *>(widget))
            add(line->placeholderText());
        else if (const auto *tabs = qobject_cast<const QTabWidget *>(widget)) {
            for (int index = 0; index < tabs->count(); ++index)
                add(tabs->tabText(index));
        } else if (const auto *header = qobject_cast<const QHeaderView *>(widget); header && header->model()) {
            for (int index = 0; index < header->count(); ++index)
                add(header->model()->headerData(index, header->orientation()).toString());
        } else if (const auto *combo = qobject_cast<const QComboBox *>(widget); combo && !qobject_cast<const QFontComboBox *>(widget)) {
            for (int index = 0; index < combo->count(); ++index)
                add(combo->itemText(index));
        }
    }
    return texts;
}

QStringList textsOf(const std::unique_ptr<QMenu> &menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts.append(action->text().section(u'\t', 0, 0));
    return texts;
}

/// The texts with Latin words that are no names.
QStringList foreign(QStringList texts)
{
    static const QRegularExpression known(QStringLiteral(
        "\\([A-Za-z/ -]+\\)|\\(\\*\\.\\w+\\)|\\(.*\\bin\\)|<[^>]*>|\\b(PDF|CUPS|HTML|JIS|ANSI|Letter|Legal|Executive|Envelope|Folio|Ledger|"
        "Tabloid|Architect|Note|Quarto|Statement|Super|Postcard|Double|Fan-fold|German|US|PRC|Extra|Plus|Small|Monarch|"
        "Personal|Invite|Italian|Chou|Kaku|DL|Big|mm|x|in|OpenGL|Ctrl|Alt|Shift|root)\\b|/\\S+"));
    static const QRegularExpression word(QStringLiteral("[A-Za-z]{2}"));
    for (QString &text : texts)
        text.remove(known);
    texts = texts.filter(word);
    texts.removeDuplicates();
    return texts;
}

class ToolkitTextsTest : public testing::Test {
protected:
    ~ToolkitTextsTest() override
    {
        for (QTranslator *translator : qApp->findChildren<QTranslator *>())
            delete translator; // this uninstalls it
    }

    static void expectChinese(QWidget &window)
    {
        window.show();
        QApplication::processEvents();
        EXPECT_EQ(foreign(textsOf(window)).join(u'|'), QString()) << window.metaObject()->className();
    }
    /// Everything of the toolkit's that our own windows open.
    static void expectChineseWhereWeGo()
    {
        QPrinter printer(QPrinter::HighResolution);
        QPrintDialog print(&printer);
        print.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange | QAbstractPrintDialog::PrintCollateCopies
            | QAbstractPrintDialog::PrintSelection | QAbstractPrintDialog::PrintCurrentPage);
        expectChinese(print);
        int properties = 0;
        QTimer::singleShot(0, &print, [&properties] {
            QWidget *dialog = QApplication::activeModalWidget();
            expectChinese(*dialog);
            ++properties;
            dialog->close();
        });
        print.findChild<QAbstractButton *>(QStringLiteral("properties"))->click();
        EXPECT_EQ(properties, 1);

        for (const QFileDialog::AcceptMode mode : { QFileDialog::AcceptOpen, QFileDialog::AcceptSave }) {
            QFileDialog files(nullptr, QStringLiteral("导出"), QDir::tempPath(), QStringLiteral("网页 (*.html)"));
            files.setOption(QFileDialog::DontUseNativeDialog);
            files.setAcceptMode(mode);
            files.setViewMode(QFileDialog::Detail);
            expectChinese(files);
        }
        QMessageBox box(QMessageBox::NoIcon, QStringLiteral("标题"), QStringLiteral("文"), QMessageBox::StandardButtons(0x7ffffc00));
        box.setDetailedText(QStringLiteral("详"));
        expectChinese(box);
        QInputDialog input;
        expectChinese(input);
        QCalendarWidget calendar;
        calendar.setLocale(QLocale(QLocale::Chinese, QLocale::China));
        expectChinese(calendar);
        QLineEdit line;
        EXPECT_EQ(foreign(textsOf(std::unique_ptr<QMenu>(line.createStandardContextMenu()))), QStringList());
        QPlainTextEdit memo;
        EXPECT_EQ(foreign(textsOf(std::unique_ptr<QMenu>(memo.createStandardContextMenu()))), QStringList());
    }
};

TEST_F(ToolkitTextsTest, DialogsSpeakChineseWithTheToolkitsFile)
{
    installToolkitTexts();
    ASSERT_EQ(qApp->findChildren<QTranslator *>().size(), 2) << "qt6-translations-l10n is needed for this test";
    expectChineseWhereWeGo();
    QColorDialog colours;
    colours.setOption(QColorDialog::DontUseNativeDialog);
    expectChinese(colours);
    QFontDialog fonts;
    fonts.setOption(QFontDialog::DontUseNativeDialog);
    expectChinese(fonts);
}

TEST_F(ToolkitTextsTest, TheDialogsThatWeOpenSpeakChineseWithoutIt)
{
    QCoreApplication::installTranslator(new ToolkitTexts(qApp));
    expectChineseWhereWeGo();
    // A translated key would be none.
    QFileDialog files;
    files.setOption(QFileDialog::DontUseNativeDialog);
    int keys = 0;
    for (const QAbstractButton *button : files.findChildren<QAbstractButton *>())
        keys += button->shortcut() == QKeySequence(Qt::ALT | Qt::Key_Up) ? 1 : 0;
    EXPECT_EQ(keys, 1);
}

} // namespace
