#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "plugin/data/udm_BasicData.h"
#include "plugin/forms/base/frame_Panel.h"
#include "plugin/forms/base/ufrm_Basic.h"

#include "tests/plugin/fake_host.h"

#include <gtest/gtest.h>

#include <QMdiArea>
#include <QTest>
#include <QVBoxLayout>

using namespace platform;

namespace {

class Screen1 : public Tfrm_Basic {
    Q_OBJECT

public:
    explicit Screen1(TComponentOwner *owner)
        : Tfrm_Basic(owner, QStringLiteral("frm_Screen1"), QStringLiteral("屏幕一"))
    {
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(Edit1);
        layout->addWidget(Edit2);
    }

    PUBLISHED(QLineEdit, Edit1);
    PUBLISHED(QLineEdit, Edit2);
    PUBLISHED(TClientDataSetEx, cds);
    PUBLISHED(TClientDataSetEx, cds1);
};

class BasicForm : public testing::Test {
protected:
    BasicForm()
    {
        dm_BasicData = &m_basicData;
        m_host.show();
        m_variable = m_screen = new Screen1(Application);
        m_screen->FormCreate();
        m_screen->SetFormVariable(&m_variable);
        m_screen->showForm();
    }
    ~BasicForm() override
    {
        m_host.mdiArea()->closeAllSubWindows();
        dm_BasicData = nullptr;
    }

    static void change(TClientDataSetEx *dataSet)
    {
        dataSet->setData(textColumn("NAME", { QStringLiteral("A") }));
        dataSet->edit();
        dataSet->fieldByName(u"NAME")->setAsString(QStringLiteral("B"));
        dataSet->post();
    }
    bool close() { return m_screen->parentWidget()->close(); }

    Tdm_BasicData m_basicData;
    FakeHost m_host;
    Tfrm_Basic *m_variable = nullptr;
    Screen1 *m_screen;
    const QString m_question = QStringLiteral("message 详细：您所做的操作并未保存，确定要关闭吗？|屏幕一|289");
};

TEST_F(BasicForm, TellsTheHostOfItsLifeInOrder)
{
    close();
    EXPECT_EQ(m_host.log,
        QStringList({ QStringLiteral("1127 frm_Screen1"), QStringLiteral("1124 frm_Screen1"), QStringLiteral("ResetSearch -"),
            QStringLiteral("1125 frm_Screen1") }));
    EXPECT_EQ(m_variable, nullptr);
}

TEST_F(BasicForm, AsksOncePerChangedDataSetAndCancelKeepsEverything)
{
    change(m_screen->cds);
    change(m_screen->cds1);
    m_host.log.clear();
    m_host.answer = idCancel;
    EXPECT_FALSE(close());
    EXPECT_EQ(m_host.log, QStringList(m_question));
    EXPECT_TRUE(m_screen->cds->active());
    EXPECT_EQ(m_variable, m_screen);

    m_host.log.clear();
    m_host.answer = idOk;
    EXPECT_TRUE(close());
    EXPECT_EQ(m_host.log, QStringList({ m_question, m_question, QStringLiteral("1125 frm_Screen1") }));
    EXPECT_EQ(m_variable, nullptr);
}

TEST_F(BasicForm, UnchangedDataSetsCloseWithoutAQuestion)
{
    m_screen->cds->setData(textColumn("NAME", { QStringLiteral("A") }));
    m_host.log.clear();
    EXPECT_TRUE(close());
    EXPECT_EQ(m_host.log, QStringList(QStringLiteral("1125 frm_Screen1")));
}

TEST_F(BasicForm, SuppressedItNeitherReportsActivationNorAsks)
{
    m_screen->SetSuppressHostNotify();
    change(m_screen->cds);
    auto *other = new Screen1(Application);
    other->FormCreate();
    other->showForm();
    m_host.log.clear();
    m_screen->showForm();
    EXPECT_EQ(m_host.log, QStringList(QStringLiteral("ResetSearch -")));
    m_host.log.clear();
    EXPECT_TRUE(close());
    EXPECT_EQ(m_host.log.filter(QStringLiteral("message")), QStringList());
}

TEST_F(BasicForm, PlainEnterMovesTheFocusAndEnterWithAKeyHeldDoesNot)
{
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_host));
    m_screen->Edit1->setFocus();
    for (const Qt::KeyboardModifier held : { Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier }) {
        QTest::keyClick(m_screen->Edit1, Qt::Key_Return, held);
        EXPECT_TRUE(m_screen->Edit1->hasFocus());
    }
    QTest::keyClick(m_screen->Edit1, Qt::Key_Return);
    EXPECT_TRUE(m_screen->Edit2->hasFocus());
}

TEST_F(BasicForm, EnterInTheLineAboveAGridLeadsDownToItsRows)
{
    m_screen->cds->setData(textColumn("NAME", { QStringLiteral("甲"), QStringLiteral("乙") }));
    TDataSource source;
    source.setDataSet(m_screen->cds);
    auto *grid = new TDBGridEh;
    m_screen->layout()->addWidget(grid);
    grid->setDataSource(&source);
    grid->setColumns({ { .fieldName = QStringLiteral("NAME"), .caption = QStringLiteral("名称") } });
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_host));
    grid->filter().openBar();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("yi"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(grid->hasFocus());
    EXPECT_EQ(grid->rowCount(), 1);
}

TEST_F(BasicForm, RightsAreTheFirstThreeCharacters)
{
    const auto rights = [this](const char *text) {
        m_screen->SetRights(QString::fromLatin1(text));
        QString granted;
        for (const char *name : { "Right1", "Right2", "Right3" })
            granted += m_screen->property(name).toBool() ? u'1' : u'0';
        return granted;
    };
    EXPECT_EQ(rights("101"), QStringLiteral("101"));
    EXPECT_EQ(rights("x11"), QStringLiteral("011"));
    EXPECT_EQ(rights("1"), QStringLiteral("100"));
    EXPECT_EQ(rights(""), QStringLiteral("000"));
}

TEST_F(BasicForm, EveryClientDataSetRunsOverTheHostsConnection)
{
    TSocketConnectionEx host;
    m_basicData.HostConnection = &host;
    auto *screen = new Screen1(Application);
    screen->FormCreate();
    EXPECT_EQ(screen->cds->remoteServer(), &host);
    EXPECT_EQ(screen->cds1->remoteServer(), &host);
    delete screen;
}

TEST_F(BasicForm, SeesEnterBeforeTheControlThatHasTheFocus)
{
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_host));
    QWidget *focusAtEnter = nullptr;
    QObject::connect(m_screen->Edit1, &QLineEdit::returnPressed, m_screen, [&] { focusAtEnter = QApplication::focusWidget(); });
    m_screen->Edit1->setFocus();
    QInputMethodEvent composing(QStringLiteral("bei"), {});
    QCoreApplication::sendEvent(m_screen->Edit1, &composing);
    QTest::keyClick(&m_host, Qt::Key_Return);
    EXPECT_TRUE(m_screen->Edit1->hasFocus()) << "the key is the input method's";
    QInputMethodEvent composed;
    QCoreApplication::sendEvent(m_screen->Edit1, &composed);
    QTest::keyClick(m_host.windowHandle(), Qt::Key_Return);
    EXPECT_EQ(focusAtEnter, m_screen->Edit2);
}

TEST(WorkPanel, TwoClicksRestoreTheHeight)
{
    QWidget panel;
    panel.setFixedHeight(137);
    auto *workPanel = new TWorkPanel;
    workPanel->setParent(&panel);
    panel.show();
    workPanel->ShowSpeed->click();
    EXPECT_EQ(panel.height(), 10);
    EXPECT_EQ(workPanel->ShowSpeed->toolTip(), QStringLiteral("最大化面板"));
    workPanel->ShowSpeed->click();
    EXPECT_EQ(panel.height(), 137);
    EXPECT_EQ(workPanel->ShowSpeed->toolTip(), QStringLiteral("最小化面板"));
}

} // namespace

#include "basic_form_test.moc"
