#include "platform/toolkit/form.h"
#include "platform/toolkit/published.h"

#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

#include <QLineEdit>

using namespace platform;

namespace {

class Host : public TMainForm {
    Q_OBJECT
    Q_PROPERTY(qulonglong Numbers READ numbers)

public:
    Q_INVOKABLE void ResetSearch(QObject *grid) { lastGrid = grid; }
    qulonglong numbers() const { return reinterpret_cast<quintptr>(&list); }

    TList list;
    QObject *lastGrid = nullptr;
};

class Part : public TFrame {
public:
    PUBLISHED(QLineEdit, Inner);
};

class Screen1 : public TDataModule {
public:
    Screen1() { setObjectName(QStringLiteral("Screen1")); }

    PUBLISHED(QObject, first);
    PUBLISHED(Part, Frame1);
    PUBLISHED(QObject, last);
};

TEST(Component, OwnersKeepTheOrderOfDeclarationAndFindByName)
{
    Screen1 screen;
    EXPECT_EQ(screen.components(), QList<QObject *>({ screen.first, screen.Frame1, screen.last }));
    EXPECT_EQ(screen.findComponent(u"LAST"), screen.last);
    EXPECT_EQ(screen.findComponent(u"Inner"), nullptr);
    EXPECT_EQ(componentPath(screen.Frame1->Inner), QStringLiteral("Screen1.Frame1.Inner"));
    delete screen.first;
    EXPECT_EQ(screen.components(), QList<QObject *>({ screen.Frame1, screen.last }));
    delete screen.Frame1;
}

TEST(Published, PropertiesListsAndMethodsAreFoundByName)
{
    Host host;
    QObject item;
    host.list.append(&item);
    EXPECT_EQ(publishedList(&host, "Numbers"), TList({ &item }));
    EXPECT_THROW(publishedProperty(&host, "numbers"), Exception);
    EXPECT_THROW(publishedProperty(nullptr, "Numbers"), Exception);
    EXPECT_THROW(publishedList(&host, "windowTitle"), Exception);

    const PublishedMethod method(&host, "ResetSearch");
    method.call(&item);
    EXPECT_EQ(host.lastGrid, &item);
    EXPECT_TRUE(PublishedMethod(&host, "NoSuchMethod").isNull());
    EXPECT_THROW(PublishedMethod(&host, "NoSuchMethod").call(nullptr), Exception);
}

} // namespace

#include "component_test.moc"
