#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/library_loader.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

QString pluginPath(const char *name) { return QStringLiteral(PLUGIN_DIRECTORY "/") + QString::fromLatin1(name); }

class LibraryLoaderTest : public testing::Test {
protected:
    LibraryLoaderTest()
    {
        // The text lies in the library and goes with it, so it is copied.
        QObject::connect(Application, &TApplication::happened, &m_watcher,
            [this](const QString &kind) { m_happened.append(QString(kind.constData(), kind.size())); });
    }

    QObject m_watcher;
    QStringList m_happened;
};

TEST_F(LibraryLoaderTest, StartUpRunsAfterLoadingAndDetachBeforeUnloadingEachTime)
{
    for (int round = 0; round < 3; ++round) {
        m_happened.clear();
        auto library = std::make_unique<TLibrary>(pluginPath("good_plugin"));
        EXPECT_EQ(reinterpret_cast<int (*)()>(library->resolve("answer"))(), 42);
        EXPECT_THROW(library->resolve("no_such_function"), Exception);
        library.reset();
        EXPECT_EQ(m_happened, QStringList({ QStringLiteral("start-up"), QStringLiteral("detach") }));
    }
}

TEST_F(LibraryLoaderTest, AStartUpThatRaisesMakesTheLoadFailWithItsMessageAndLeavesNothing)
{
    for (int round = 0; round < 2; ++round) {
        m_happened.clear();
        try {
            const TLibrary library(pluginPath("failing_plugin"));
            ADD_FAILURE() << "loaded";
        } catch (const Exception &exception) {
            EXPECT_EQ(exception.message(), QStringLiteral("全局数据集\"area\"不存在！"));
        }
        EXPECT_EQ(m_happened, QStringList(QStringLiteral("detach")));
    }
}

TEST_F(LibraryLoaderTest, AMissingFileIsNamed)
{
    try {
        const TLibrary library(pluginPath("absent_plugin"));
        ADD_FAILURE() << "loaded";
    } catch (const Exception &exception) {
        EXPECT_TRUE(exception.message().contains(u"absent_plugin")) << exception.what();
    }
}

} // namespace
