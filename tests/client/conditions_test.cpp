#include "client/conditions/condition_memory.h"
#include "client/conditions/screen_state.h"

#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/editors/editors.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/clock.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/page_control.h"
#include "tests/support/file_folder.h"
#include "tests/support/print_qstring.h"
#include "tests/support/small_disk.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFormLayout>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace client;
using namespace platform;

namespace {

/// A screen that has rules: the list is there only while it is ticked, and a shift that nobody knows is emptied when it is left.
class Screen : public TForm {
public:
    Screen()
        : TForm(Application, QStringLiteral("frm_Any"), QStringLiteral("任意查询"))
    {
        auto *layout = new QFormLayout(this);
        layout->addRow(QStringLiteral("开始"), Start);
        layout->addRow(QStringLiteral("结束"), End);
        layout->addRow(QStringLiteral("班次"), Shift);
        layout->addRow(QStringLiteral("扫描人"), Man);
        layout->addRow(ByList);
        layout->addRow(List);
        TDBDateTimeEditEh::pair(Start, End);
        Shift->setItemsText(QStringLiteral("全部\n早班\n夜班"));
        Shift->setItemIndex(0);
        ByList->setText(QStringLiteral("按单号查询"));
        List->setEnabled(false);
        QObject::connect(ByList, &QCheckBox::clicked, List, &QWidget::setEnabled);
        packet::Builder rows({ { "NAME", packet::ColumnType::Text } });
        rows.addText(0, "张三");
        rows.endRow();
        Men->setData(rows.finish());
        Source->setDataSet(Men);
        Man->setFields(QStringLiteral("NAME"), QStringLiteral("NAME"), {});
        Man->setDropDownColumns({ { QStringLiteral("NAME"), QStringLiteral("姓名"), 60 } });
        Man->setListSource(Source);
        show();
        activateWindow();
        QApplication::processEvents();
    }

    PUBLISHED(TDBDateTimeEditEh, Start);
    PUBLISHED(TDBDateTimeEditEh, End);
    PUBLISHED(TDBComboBoxEh, Shift);
    PUBLISHED(TDBLookupComboboxEh, Man);
    PUBLISHED(QPlainTextEdit, List); // before the box that enables it
    PUBLISHED(QCheckBox, ByList);
    PUBLISHED(TClientDataSetEx, Men);
    PUBLISHED(TDataSource, Source);
};

class Conditions : public testing::Test, protected FileFolder {
protected:
    Conditions()
    {
        today(QDate(2026, 11, 18));
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_messages.append(request.text);
            return idOk;
        });
        handle(&m_memory, &ConditionMemory::said, &m_memory, [this](const QString &text) { m_said.append(text); });
    }
    ~Conditions() override
    {
        Application->setMessageResponder({});
        Clock::set({});
    }
    static void today(QDate day) { Clock::set(QDateTime(day, QTime(9, 0), Qt::UTC)); }
    /// What a person does in the dialog that comes up next.
    static void inDialog(const std::function<void(QDialog &)> &act)
    {
        QTimer::singleShot(0, [act] { act(dynamic_cast<QDialog &>(*QApplication::activeModalWidget())); });
    }
    QString folder() const { return path(QStringLiteral("C")); }

    QStringList m_messages;
    QStringList m_said;
    ConditionMemory m_memory { folder() };
};

TEST_F(Conditions, ComeBackThroughTheRulesOfTheScreenAndSayWhatIsGone)
{
    {
        Screen screen;
        screen.Start->chooseRange(NamedRange::Yesterday);
        screen.Shift->setItemIndex(2);
        screen.Man->setText(QStringLiteral("李四"));
        screen.ByList->click();
        screen.List->setPlainText(QStringLiteral("1\n2"));
        m_memory.keepLast(screen);
    }
    today(QDate(2026, 11, 20));
    Screen screen;
    m_memory.putBackLast(screen);
    EXPECT_EQ(screen.Start->text() + screen.End->text(), QStringLiteral("2026-11-19 00:00:002026-11-19 23:59:59"));
    EXPECT_EQ(screen.Shift->text(), QStringLiteral("夜班"));
    EXPECT_TRUE(screen.ByList->isChecked());
    EXPECT_EQ(screen.List->toPlainText(), QStringLiteral("1\n2")) << "it could be used only after the box was ticked";
    EXPECT_EQ(m_messages.join(u'|'), QStringLiteral("上次条件已放回，但下列条件请检查：\n扫描人：“李四”已不在可选的值里"));
    EXPECT_TRUE(m_said.join(u'|').contains(QStringLiteral("昨天")));

    screen.Shift->setItemsText(QStringLiteral("全部"));
    screen.Shift->setItemIndex(0);
    screen.Man->clear();
    m_messages.clear();
    m_memory.putBackLast(screen);
    EXPECT_TRUE(m_messages.join(u'|').contains(QStringLiteral("班次：“夜班”")));
    EXPECT_EQ(screen.Shift->text(), QStringLiteral("全部"));
}

TEST_F(Conditions, AFixedDayStaysAndAPersonChoosesWhatTheDaysMean)
{
    Screen screen;
    screen.Start->setText(QStringLiteral("2026-11-17 00:00:00"));
    screen.End->setText(QStringLiteral("2026-11-17 23:59:59"));
    const auto save = [&](const QString &name, const QString &range) {
        inDialog([&](QDialog &dialog) {
            const QList<QComboBox *> boxes = dialog.findChildren<QComboBox *>();
            boxes[0]->setEditText(name);
            EXPECT_EQ(boxes[1]->currentText().left(2), QStringLiteral("昨天"));
            boxes[1]->setCurrentIndex(boxes[1]->findText(range, Qt::MatchStartsWith));
            dialog.accept();
        });
        m_memory.saveAs(screen);
    };
    save(QStringLiteral("那一天"), QStringLiteral("固定"));
    save(QStringLiteral("A&B"), QStringLiteral("上月"));
    today(QDate(2027, 1, 5));
    QMenu menu;
    const QList<QAction *> actions = m_memory.addNamed(&menu, &screen);
    ASSERT_EQ(actions.size(), 2);
    EXPECT_EQ(actions[1]->text(), QStringLiteral("A&&B\t上月"));
    actions[1]->trigger();
    EXPECT_EQ(screen.Start->text() + screen.End->text(), QStringLiteral("2026-12-01 00:00:002026-12-31 23:59:59"));
    actions[0]->trigger();
    EXPECT_EQ(screen.Start->text(), QStringLiteral("2026-11-17 00:00:00"));
    EXPECT_EQ(m_messages, QStringList());
}

TEST_F(Conditions, NamedOnesAreBoundedAndReplacedAndManaged)
{
    Screen screen;
    const auto save = [&](const QString &name) {
        inDialog([&](QDialog &dialog) {
            dialog.findChild<QComboBox *>()->setEditText(name);
            dialog.accept();
        });
        m_memory.saveAs(screen);
    };
    for (int index = 0; index < ConditionStore::mostNamed; ++index)
        save(QString::number(index));
    EXPECT_THROW(save(QStringLiteral("太多")), Exception);
    save(QStringLiteral("7"));
    EXPECT_EQ(m_messages.join(u'|'), QStringLiteral("已有名为“7”的条件，要替换它吗？"));
    inDialog([](QDialog &dialog) {
        for (const QPushButton *button : dialog.findChildren<QPushButton *>()) {
            if (button->text().startsWith(u"删除"))
                const_cast<QPushButton *>(button)->click();
        }
        dialog.accept();
    });
    m_memory.manage(screen);
    QMenu menu;
    EXPECT_EQ(m_memory.addNamed(&menu, &screen).size(), ConditionStore::mostNamed - 1);
}

TEST_F(Conditions, ABadFileIsSetAsideAndAFullDiskTakesNothing)
{
    Screen screen;
    screen.Man->setText(QStringLiteral("张三"));
    const QString file = QStringLiteral("C/frm_Any.json");
    m_memory.keepLast(screen);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(path(file)); }, 60'000)) << "a crash minutes later takes nothing";
    {
        const FileSizeLimit full(20);
        screen.Man->clear();
        m_memory.keepLast(screen);
        m_memory.flush();
        EXPECT_TRUE(m_said.join(u'|').startsWith(QStringLiteral("上次条件没有保存：")));
    }
    m_memory.putBackLast(screen);
    EXPECT_EQ(screen.Man->text(), QStringLiteral("张三")) << "the older ones are still whole";

    for (const QByteArray &bytes : { QByteArray("{\"last\":"), QByteArray("[]"), QByteArray(2 * 1024 * 1024, '[') }) {
        put(file, bytes);
        EXPECT_THROW(m_memory.putBackLast(screen), Exception);
        EXPECT_FALSE(QFile::exists(path(file)));
        EXPECT_TRUE(QFile::exists(path(file + u".broken")));
    }
    put(file, R"({"last":{"values":[{"control":"Gone.Box","caption":"旧条件","text":"1"},{"control":"Man","text":7},5]},"named":{}})");
    m_memory.putBackLast(screen);
    EXPECT_TRUE(m_messages.join(u'|').contains(QStringLiteral("旧条件：这个窗口已没有这个条件")));
}

} // namespace
