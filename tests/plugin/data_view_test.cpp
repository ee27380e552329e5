#include "plugin/view/frame_DataView.h"
#include "plugin/view/layout_file.h"
#include "plugin/view/layout_storage.h"
#include "plugin/view/named_layouts.h"

#include "packet/builder.h"
#include "platform/dataset/data_set_provider.h"
#include "platform/grid/grid_menu.h"
#include "platform/toolkit/application.h"
#include "plugin/util/dataset_features.h"
#include "tests/plugin/fake_host.h"
#include "tests/support/small_disk.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>

#include <memory>
#include <utility>

using namespace platform;
using namespace plugin;

TIniPropStorageManEh *IniStorageManager = nullptr;

namespace {

const GridColumns columns {
    text("", u"序号", 40),
    text("NAME", u"名称", 80),
    text("SECRET", u"隐藏", 70).hidden(),
    number("FEE", u"费用", 60).sum(u"总金额"),
};

class DataView : public testing::Test {
protected:
    DataView()
    {
        m_storage.setIniFileName(m_directory.filePath(QStringLiteral("WindowsIni/布局.ini")));
        IniStorageManager = &m_storage;
        Application->setMessageResponder([this](const MessageRequest &request) {
            m_messages.append(request.text);
            return idOk;
        });
        packet::Builder builder({ { "NAME", packet::ColumnType::Text }, { "FEE", packet::ColumnType::Decimal } });
        for (const auto &[name, fee] : { std::pair("甲", "0.10"), std::pair("乙", "0.20"), std::pair("丙", "12.35") }) {
            builder.addText(0, name);
            builder.addText(1, fee);
            builder.endRow();
        }
        m_dataSet.setData(builder.finish());
    }
    ~DataView() override
    {
        IniStorageManager = nullptr;
        Application->setMessageResponder({});
    }

    /// A view inside a form of that name, shown so that its columns are initialised.
    struct Shown {
        TDataModule form;
        TDataView view;
    };
    std::unique_ptr<Shown> show()
    {
        auto shown = std::make_unique<Shown>();
        shown->form.setObjectName(QStringLiteral("frm_Test"));
        shown->view.setObjectName(QStringLiteral("DataView1"));
        shown->view.setProperty("_owner", QVariant::fromValue<QObject *>(&shown->form));
        shown->view.design(columns, &m_dataSet);
        shown->view.show();
        return shown;
    }
    QStringList order(const TDataView &view) const
    {
        QStringList fields;
        for (int index = 0; index < view.DataViewGrid->columnCount(); ++index)
            fields.append(view.DataViewGrid->column(index).fieldName);
        return fields;
    }

    QByteArray contents(const QString &name = {}) const
    {
        QFile file(name.isEmpty() ? m_storage.iniFileName() : name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    void put(const QByteArray &bytes) const
    {
        QFile file(m_storage.iniFileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    /// What the user was told since the last call.
    QStringList messages()
    {
        QCoreApplication::processEvents();
        return std::exchange(m_messages, {});
    }

    QStringList m_messages;
    QTemporaryDir m_directory;
    TIniPropStorageManEh m_storage;
    TCustomClientDataSet m_dataSet;
};

TEST_F(DataView, TheFirstDataColumnCountsAndSumsAreExact)
{
    const auto shown = show();
    const TDBGridEh &grid = *shown->view.DataViewGrid;
    EXPECT_EQ(grid.footerText(0, 0), QString());
    EXPECT_EQ(grid.footerText(0, 1), QStringLiteral("记录数"));
    EXPECT_EQ(grid.footerText(1, 1), QStringLiteral("3"));
    EXPECT_EQ(grid.footerText(0, 3), QStringLiteral("总金额"));
    EXPECT_EQ(grid.footerText(1, 3), QStringLiteral("12.65"));
    EXPECT_EQ(grid.cellText(2, 0), QStringLiteral("3"));
    EXPECT_TRUE(grid.column(1).titleButton);
    EXPECT_TRUE(grid.column(2).titleButton) << "it sorts when a person shows it";
    EXPECT_EQ(grid.cellBackground(0, 1), QColor(0xc4, 0xc4, 0xff));
    EXPECT_EQ(grid.cellBackground(1, 1), QColor(0xdd, 0xdd, 0xff));
}

TEST_F(DataView, TheLayoutComesBackAsItWasLeft)
{
    auto shown = show();
    shown->view.DataViewGrid->setColumnWidth(1, 133);
    shown->view.DataViewGrid->moveColumn(3, 0);
    shown.reset();

    QFile file(m_storage.iniFileName());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("[frm_Test.DataView1.DataViewGrid]\r\nFEE=60\r\nFieldIndex=FEE;NAME;\r\nNAME=133\r\n"));

    shown = show();
    EXPECT_EQ(order(shown->view), QStringList({ QStringLiteral("FEE"), QStringLiteral("NAME"), QString(), QStringLiteral("SECRET") }));
    EXPECT_EQ(shown->view.DataViewGrid->column(1).width, 133);
}

TEST_F(DataView, WhatWasHiddenShownOrFrozenStaysSoUntilTheDesignIsRestored)
{
    auto shown = show();
    TDBGridEh *grid = shown->view.DataViewGrid;
    grid->showColumn(grid->columnIndex(u"SECRET"));
    grid->hideColumn(grid->columnIndex(u"NAME"));
    grid->moveColumn(grid->columnIndex(u"SECRET"), 1);
    grid->freezeColumns(2);
    shown.reset();
    QFile file(m_storage.iniFileName());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(),
        QByteArray("[frm_Test.DataView1.DataViewGrid]\r\nFEE=60\r\nFieldIndex=SECRET;FEE;\r\nSECRET=70\r\n"
                   "[frm_Test.DataView1.DataViewGrid.Arrangement]\r\nFrozen=2\r\nHidden=NAME;\r\nShown=SECRET;\r\n"));
    file.close();

    shown = show();
    grid = shown->view.DataViewGrid;
    EXPECT_EQ(order(shown->view), QStringList({ QStringLiteral("SECRET"), QStringLiteral("FEE"), QString(), QStringLiteral("NAME") }));
    EXPECT_TRUE(grid->column(0).visible);
    EXPECT_FALSE(grid->column(3).visible);
    EXPECT_TRUE(grid->isFrozen(1));
    grid->restoreDesignedColumns();
    shown.reset();
    EXPECT_TRUE(LayoutFile(m_storage.iniFileName())
                    .value(QStringLiteral("frm_Test.DataView1.DataViewGrid.Arrangement"), QStringLiteral("Hidden"))
                    .isNull());
    // The stored fields come first, in their order; a column without data is not among them.
    EXPECT_EQ(order(show()->view), QStringList({ QStringLiteral("NAME"), QStringLiteral("FEE"), QString(), QStringLiteral("SECRET") }));
}

/// The entries of the layouts' menu that a right click on a title offers.
QList<QAction *> layoutActions(const QMenu &menu)
{
    for (const QAction *action : menu.actions()) {
        if (action->menu() && action->text() == QStringLiteral("布局"))
            return action->menu()->actions();
    }
    return {};
}

TEST_F(DataView, LayoutsHaveNamesAndComeBackByTheMenu)
{
    auto shown = show();
    TDBGridEh &grid = *shown->view.DataViewGrid;
    auto *layouts = grid.findChild<NamedLayouts *>();
    grid.setColumnWidth(1, 123);
    grid.moveColumn(3, 1);
    grid.hideColumn(2);
    grid.freezeColumns(1);
    // Columns without a field have no name to keep a place under.
    QStringList arranged = order(shown->view);
    arranged.removeAll(QString());
    layouts->save(QStringLiteral(" 月报[1]=a&b.x "));
    EXPECT_THROW(layouts->save(QStringLiteral(" .; ")), Exception);
    grid.restoreDesignedColumns();
    layouts->save(QStringLiteral("日报"));
    EXPECT_EQ(layouts->names(), QStringList({ QStringLiteral("日报"), QStringLiteral("月报 1 a&b x") }));

    shown = show();
    TDBGridEh &again = *shown->view.DataViewGrid;
    const auto menu = columnMenu(again, 1);
    const QList<QAction *> actions = layoutActions(*menu);
    ASSERT_GE(actions.size(), 4);
    EXPECT_EQ(actions[1]->text(), QStringLiteral("月报 1 a&&b x"));
    actions[1]->trigger();
    QStringList restored = order(shown->view);
    restored.removeAll(QString());
    EXPECT_EQ(restored, arranged);
    EXPECT_EQ(again.columnChoice(again.columnIndex(u"NAME")), false);
    EXPECT_EQ(again.frozenColumns(), 1);
    actions[0]->trigger();
    EXPECT_EQ(again.frozenColumns(), 0);
    again.findChild<NamedLayouts *>()->remove(QStringLiteral("日报"));
    EXPECT_EQ(again.findChild<NamedLayouts *>()->names().size(), 1);
}

TEST_F(DataView, UnknownFieldsAndZeroWidthsInTheFileAreIgnored)
{
    LayoutFile file(m_storage.iniFileName());
    file.setSection(QStringLiteral("frm_Test.DataView1.DataViewGrid"),
        { { QStringLiteral("FieldIndex"), QStringLiteral("gone;fee;SECRET;a;b;c;name;") }, { QStringLiteral("fee"), QStringLiteral("0") },
            { QStringLiteral("gone"), QStringLiteral("5") }, { QStringLiteral("name"), QStringLiteral("2147483647") } });
    ASSERT_TRUE(file.save());
    const auto shown = show();
    EXPECT_EQ(order(shown->view), QStringList({ QString(), QStringLiteral("FEE"), QStringLiteral("SECRET"), QStringLiteral("NAME") }));
    EXPECT_EQ(shown->view.DataViewGrid->column(1).width, 60);
    EXPECT_LT(shown->view.DataViewGrid->column(3).width, 10'000);
}

TEST_F(DataView, ABrokenLayoutFileIsSetAsideAndTheUserIsTold)
{
    ASSERT_TRUE(LayoutFile(m_storage.iniFileName()).save());
    for (const QByteArray &broken : { QByteArray("\xff\xfe[x]\n"), QByteArray("no section=1\n"), QByteArray("[a]\nrubbish\n") }) {
        put(broken);
        EXPECT_EQ(order(show()->view).first(), QString());
        QFile aside(m_storage.iniFileName() + u".broken");
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
        EXPECT_EQ(aside.readAll(), broken);
    }
    const QStringList told = messages();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].contains(m_storage.iniFileName()) && told[0].contains(u"布局.ini.broken")) << told[0].toStdString();

    // Where nothing can be set aside, nothing is lost either.
    QFile::remove(m_storage.iniFileName() + u".broken");
    ASSERT_TRUE(QDir().mkpath(m_storage.iniFileName() + u".broken/x"));
    put("rubbish");
    show();
    EXPECT_EQ(contents(), QByteArray("rubbish"));
    EXPECT_EQ(messages().size(), 1);
}

TEST_F(DataView, ALayoutThatCannotBeSavedIsToldOnceAndLeavesTheOldOne)
{
    show()->view.DataViewGrid->setColumnWidth(1, 133);
    const QByteArray before = contents();
    EXPECT_TRUE(before.contains("NAME=133"));
    {
        const FileSizeLimit fullDisk(20);
        for (int width : { 50, 51 })
            show()->view.DataViewGrid->setColumnWidth(1, width);
    }
    EXPECT_EQ(contents(), before);
    const QStringList told = messages();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].contains(m_storage.iniFileName()) && told[0].contains(u"磁盘已满")) << told[0].toStdString();

    // A file where the folder should be.
    m_storage.setIniFileName(m_storage.iniFileName() + u"/布局.ini");
    show();
    EXPECT_EQ(messages().size(), 1);
    EXPECT_EQ(contents(m_directory.filePath(QStringLiteral("WindowsIni/布局.ini"))), before);
}

TEST_F(DataView, TitlesSortTheDataSetOrTheOneThatItsProviderServes)
{
    TCDSDatasetFeaturesEh features;
    const auto names = [](const TDataSet &dataSet) {
        QString all;
        for (int row = 0; row < dataSet.recordCount(); ++row)
            all += dataSet.text(dataSet.fieldByName(u"NAME")->index(), row);
        return all;
    };
    auto shown = show();
    TDBGridEh *grid = shown->view.DataViewGrid;
    for (const auto &[column, modifiers, expected] : std::initializer_list<std::tuple<int, Qt::KeyboardModifiers, QString>> {
             { 1, {}, QStringLiteral("丙甲乙") }, { 3, Qt::ControlModifier, QStringLiteral("丙甲乙") }, { 3, {}, QStringLiteral("丙乙甲") },
             { 3, {}, QStringLiteral("甲乙丙") }, // no mark left: the order of the data
         }) {
        grid->clickTitle(column, modifiers);
        EXPECT_EQ(names(m_dataSet), expected) << column;
    }

    auto *provider = shown->form.own(new TDataSetProvider, "Provider1");
    auto *fetching = shown->form.own(new TCustomClientDataSet, "cds");
    provider->setDataSet(&m_dataSet);
    shown->view.DS->setDataSet(fetching);
    grid->setSortLocal(false);
    grid->clickTitle(1); // nothing to sort yet
    EXPECT_FALSE(fetching->active());
    fetching->setProviderName(QStringLiteral("provider1"));
    fetching->open();
    grid->clickTitle(1);
    EXPECT_EQ(names(*fetching), QStringLiteral("丙甲乙"));
    EXPECT_EQ(fetching->text(1, 0), QStringLiteral("12.35"));
    grid->clickTitle(1);
    EXPECT_EQ(names(*fetching), QStringLiteral("乙甲丙"));
    provider->setDataSet(nullptr);
    grid->clickTitle(1);
    EXPECT_EQ(names(*fetching), QStringLiteral("乙甲丙"));
}

TEST_F(DataView, TheGridRestsWhileItsDataSetIsEditedAndHeldControlsComeBack)
{
    const auto shown = show();
    m_dataSet.edit();
    EXPECT_FALSE(shown->view.DataViewGrid->isEnabled());
    m_dataSet.disableControls();
    m_dataSet.cancel();
    EXPECT_TRUE(shown->view.DataViewGrid->isEnabled());
    EXPECT_FALSE(m_dataSet.controlsDisabled());
}

} // namespace
