#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/screen.h"
#include "tests/guest/fake_server.h"

#include <gtest/gtest.h>

#include <QMdiArea>

#include <memory>

using namespace platform;

namespace {

/// The real library in a bare main window.
class Library : public testing::Test {
protected:
    Library()
        : m_library(std::make_unique<TLibrary>(QStringLiteral(KELVARA_GUEST)))
        , m_show(reinterpret_cast<QuestQueryFunction>(m_library->resolve("ShowQuestQuery")))
    {
        Application->setMainForm(&m_host);
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_log.append(request.text + u'|' + request.title + u'|' + QString::number(request.flags));
            return idOk;
        });
        QObject::connect(Application, &TApplication::happened, &m_host, [this](const QString &kind, const QVariantMap &particulars) {
            if (kind == u"error")
                m_log.append(u"error " + particulars[QStringLiteral("text")].toString());
        });
    }
    ~Library() override
    {
        m_library.reset();
        Application->setMessageResponder({});
        Application->setMainForm(nullptr);
    }
    QStringList show(QStringList bills, const QList<TCustomRemoteServer *> &connections)
    {
        m_log.clear();
        m_show(&bills, Application, Screen, connections.data(), int(connections.size()) - 1);
        return m_log;
    }

    TMainForm m_host;
    FakeServer m_first;
    FakeServer m_second;
    QStringList m_log;
    std::unique_ptr<TLibrary> m_library;
    QuestQueryFunction m_show;
};

const QStringList one { QStringLiteral("268") };

TEST_F(Library, EveryCallOpensAWindowAndUnloadingClosesThemAll)
{
    EXPECT_EQ(show(one, { &m_first }), QStringList());
    EXPECT_EQ(show(one, { &m_first, &m_second }), QStringList());
    EXPECT_EQ(m_first.statements.size(), 16);
    EXPECT_EQ(m_second.statements.size(), 8);
    ASSERT_EQ(m_host.forms().size(), 2);
    m_host.forms().first()->parentWidget()->close();
    m_library.reset();
    EXPECT_TRUE(m_host.forms().isEmpty());
    EXPECT_TRUE(m_host.mdiArea()->subWindowList().isEmpty());
    EXPECT_TRUE(Application->components().isEmpty());
}

TEST_F(Library, AMissingConnectionIsPassedOver)
{
    EXPECT_EQ(show(one, { nullptr, &m_second }), QStringList());
    EXPECT_EQ(m_second.statements.size(), 8);
    const QStringList refusal(QStringLiteral("详细：没有连接到应用服务器，请重新登录后再查询！|客户查询|48"));
    EXPECT_EQ(show(one, { nullptr, nullptr }), refusal);
    EXPECT_EQ(show(one, {}), refusal);
    EXPECT_EQ(m_host.forms().size(), 1);
}

TEST_F(Library, WithoutNumbersItSaysSo)
{
    const QStringList refusal(QStringLiteral("详细：没有运单号，请先选中要查询的运单！|客户查询|48"));
    EXPECT_EQ(show({}, { &m_first }), refusal);
    EXPECT_EQ(show({ QStringLiteral(" "), QString() }, { &m_first }), refusal);
    EXPECT_EQ(show({ QStringLiteral("1\t2"), QStringLiteral("3") }, { &m_first }),
        QStringList({ QStringLiteral("详细：这些内容不是运单号，不能查询，请核对：\n1\t2|客户查询|48") }));
    EXPECT_EQ(m_host.forms().size(), 1);
}

TEST_F(Library, AFailureGoesToTheApplicationAndLeavesNoWindow)
{
    m_first.failure = QStringLiteral("服务器忙");
    EXPECT_EQ(show(one, { &m_first }), QStringList({ QStringLiteral("error 服务器忙") }));
    EXPECT_EQ(Screen->cursor(), crDefault);
    Application->setMainForm(nullptr);
    EXPECT_EQ(show(one, { &m_first }), QStringList({ QStringLiteral("error 主窗口没有打开，无法显示客户查询。") }));
    EXPECT_TRUE(Application->components().isEmpty());
}

} // namespace
