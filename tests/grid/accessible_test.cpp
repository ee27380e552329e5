#include "tests/grid/grid_fixture.h"
#include "tests/support/print_qstring.h"

#include <QAccessible>
#include <QAccessibleBridge>
#include <QtPlugin>

#include <utility>

/// A screen reader as the toolkit loads one. It hears what becomes current in tables.
class Reader : public QAccessibleBridge {
public:
    void setRootObject(QAccessibleInterface *) override { }
    void notifyAccessibilityUpdate(QAccessibleEvent *event) override
    {
        const QAccessibleInterface *about = event->type() == QAccessible::Focus ? event->accessibleInterface() : nullptr;
        if (about && about->role() == QAccessible::Cell)
            s_heard.append(about->text(QAccessible::Name) + u'|' + about->text(QAccessible::Value));
    }

    static inline QStringList s_heard;
};

class ReaderPlugin : public QAccessibleBridgePlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QAccessibleBridgeFactoryInterface_iid FILE "reader.json")

public:
    QAccessibleBridge *create(const QString &) override { return new Reader; }
};

#include "accessible_test.moc"

namespace {

/// Before the toolkit looks for readers, which it does once.
const bool isRegistered = [] {
    qRegisterStaticPluginFunction(QStaticPlugin(qt_plugin_instance, qt_plugin_query_metadata_v2));
    return true;
}();

class SpokenGrid : public Grid {
protected:
    SpokenGrid()
    {
        m_grid.setFocus();
        m_grid.setCurrentCell(0, 0);
    }
    QAccessibleInterface *root() { return QAccessible::queryAccessibleInterface(&m_grid); }
    /// What a reader says of the cell that a key leads to.
    QString after(Qt::Key key)
    {
        QTest::keyClick(&m_grid, key);
        return root()->focusChild()->text(QAccessible::Name);
    }
};

TEST_F(SpokenGrid, SaysTheValueAndTheRowOrTheTitleAndTheValueAfterAStep)
{
    ASSERT_NE(root(), nullptr); // from now on somebody listens
    EXPECT_EQ(after(Qt::Key_Down), QStringLiteral("008，第 2 行"));
    EXPECT_EQ(after(Qt::Key_Right), QStringLiteral("寄件 网点 上海"));
    EXPECT_EQ(after(Qt::Key_Down), QStringLiteral("空白，第 3 行"));
    EXPECT_EQ(root()->text(QAccessible::Value), QStringLiteral("空白，第 3 行"));
    EXPECT_TRUE(root()->focusChild()->state().focused);
}

TEST_F(SpokenGrid, TellsTheReaderOfEachStepByItself)
{
    ASSERT_TRUE(isRegistered);
    ASSERT_NE(root(), nullptr);
    Reader::s_heard.clear();
    for (const Qt::Key key : { Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Up })
        QTest::keyClick(&m_grid, key);
    EXPECT_EQ(std::exchange(Reader::s_heard, {}),
        QStringList({ QStringLiteral("008，第 2 行|008"), QStringLiteral("寄件 网点 上海|上海"), QStringLiteral("空白，第 3 行|"),
            QStringLiteral("上海，第 2 行|上海") }));
}

TEST_F(SpokenGrid, IsATableOfItsVisibleColumns)
{
    m_grid.setColumnVisible(0, false);
    QAccessibleTableInterface *table = root()->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->columnCount(), 3);
    EXPECT_EQ(table->rowCount(), 3);
    EXPECT_EQ(table->columnDescription(0), QStringLiteral("寄件 网点"));
    QAccessibleInterface *cell = table->cellAt(2, 1);
    EXPECT_EQ(cell->text(QAccessible::Value), QStringLiteral("12.3"));
    EXPECT_EQ(cell->text(QAccessible::Name), QStringLiteral("寄件 费用 12.3"));
    EXPECT_EQ(root()->indexOfChild(cell), 7);
    EXPECT_EQ(root()->childAt(cell->rect().center().x(), cell->rect().center().y()), cell);
    EXPECT_EQ(table->cellAt(3, 0), nullptr);
    EXPECT_EQ(table->columnDescription(9), QString());

    m_dataSet.close();
    EXPECT_FALSE(cell->isValid()) << "a reader that still holds it gets nothing";
    EXPECT_EQ(cell->text(QAccessible::Value), QString());
    EXPECT_EQ(root()->childCount(), 0);
    EXPECT_FALSE(root()->text(QAccessible::Value).isEmpty());
}

} // namespace
