#include "client/export/asked_conditions.h"
#include "client/export/printed_notes.h"
#include "client/export/screen_conditions.h"

#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/editors/editors.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/page_control.h"
#include "platform/toolkit/radio_group.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFormLayout>
#include <QPlainTextEdit>
#include <QPushButton>

#include <memory>

using namespace client;

namespace {

TEST(ScreenConditions, AreToldByTheirLabelsInTabOrder)
{
    TForm form(Application, QStringLiteral("frm_Any"), QStringLiteral("月发件清单"));
    auto *layout = new QVBoxLayout(&form);
    auto *box = new QGroupBox(QStringLiteral("扫描时间"));
    auto *times = new QFormLayout(box);
    auto *start = new TDBDateTimeEditEh;
    times->addRow(QStringLiteral("开始(&A)"), start);
    start->setText(QStringLiteral("2026-02-01 00:00:00"));
    auto *fields = new QFormLayout;
    auto *classes = new TDBComboBoxEh;
    classes->addItems({ QStringLiteral("全部"), QStringLiteral("早班") });
    classes->setItemIndex(1);
    fields->addRow(QStringLiteral("班次"), classes);
    auto *hidden = new QLineEdit(QStringLiteral("x"));
    fields->addRow(QStringLiteral("隐藏"), hidden);
    hidden->hide();
    fields->addRow(new QLineEdit(QStringLiteral("没有标题")));
    auto *byNumber = new QCheckBox(QStringLiteral("按单号查询"));
    auto *numbers = new QPlainTextEdit(QStringLiteral("007\n008\n"));
    numbers->setPlaceholderText(QStringLiteral("每行一个运单编号"));
    auto *kind = new TRadioGroup;
    kind->setTitle(QStringLiteral("类型"));
    kind->setItems({ QStringLiteral("到件"), QStringLiteral("发件") });
    kind->setItemIndex(1);
    layout->addWidget(box);
    layout->addLayout(fields);
    for (QWidget *widget : std::initializer_list<QWidget *> { byNumber, numbers, kind })
        layout->addWidget(widget);
    auto *pages = new TPageControl;
    auto *sheet = new TTabSheet;
    auto *grid = new TDBGridEh(sheet);
    new QLineEdit(QStringLiteral("查找"), grid);
    pages->addPage(new TTabSheet, QStringLiteral("统计数据"));
    pages->addPage(sheet, QStringLiteral("明细数据"));
    layout->addWidget(pages);

    QStringList told;
    for (const ExportNote &condition : screenConditions(form))
        told.append(condition.caption + u'=' + condition.value);
    EXPECT_EQ(told.join(u'|'), QStringLiteral("扫描时间 开始=2026-02-01 00:00:00|班次=早班|按单号查询=否|运单编号=007\n008|类型=发件"));
    EXPECT_EQ(screenTitle(*grid), QStringLiteral("月发件清单 明细数据"));
}

TEST(ScreenConditions, StayWithTheRowsThatTheyAskedFor)
{
    auto form = std::make_unique<TForm>(Application, QStringLiteral("frm_Any"), QStringLiteral("月发件清单"));
    auto *layout = new QFormLayout(form.get());
    auto *site = new QLineEdit(QStringLiteral("北京"));
    layout->addRow(QStringLiteral("网点"), site);
    auto *query = new QPushButton;
    auto *grid = new TDBGridEh;
    layout->addRow(query);
    layout->addRow(grid);
    auto *rows = form->own(new TClientDataSetEx, "cds");
    auto *detail = form->own(new TClientDataSetEx, "cds1");
    TDataSource source;
    source.setDataSet(rows);
    grid->setDataSource(&source);
    const packet::PacketPtr one = packet::Builder({ { "CODE", packet::ColumnType::Text } }).finish();
    bool fails = false;
    QObject::connect(query, &QPushButton::clicked, [&] {
        if (!site->text().isEmpty() && !fails)
            rows->setData(one);
    });
    AskedConditions asked;
    for (int activation = 0; activation < 2; ++activation)
        asked.watch(form.get(), query);
    const auto value = [&] { return asked.of(*grid).value(0).value; };
    site->setText(QStringLiteral("上海"));
    EXPECT_EQ(value(), QStringLiteral("上海")) << "not queried yet";
    EXPECT_FALSE(asked.haveChanged(*grid));
    query->click();
    EXPECT_FALSE(asked.haveChanged(*grid));
    site->setText(QStringLiteral("广州"));
    EXPECT_EQ(value(), QStringLiteral("上海"));
    EXPECT_TRUE(asked.haveChanged(*grid));
    for (const bool refuses : { true, false }) {
        site->setText(refuses ? QString() : QStringLiteral("成都"));
        fails = !refuses;
        query->click();
        EXPECT_EQ(value(), QStringLiteral("上海")) << "what was refused, or failed, has no rows";
    }
    detail->setData(one);
    source.setDataSet(detail);
    EXPECT_EQ(value(), QStringLiteral("上海")) << "a detail of those rows";
    fails = false;
    query->click();
    EXPECT_EQ(value(), QStringLiteral("上海")) << "the detail has stayed";
    source.setDataSet(rows);
    EXPECT_EQ(value(), QStringLiteral("成都"));
    rows->close();
    EXPECT_FALSE(asked.haveChanged(*grid));
}

TEST(PrintedNotes, LeaveOutWhatAsksNothingAndShortenLists)
{
    EXPECT_EQ(printedNotes({ { QStringLiteral("网点"), QStringLiteral("北京") }, { QStringLiteral("袋号"), {} },
                  { QStringLiteral("运单编号"), QStringLiteral("1\n2\n3\n4\n") }, { QStringLiteral("单号"), QStringLiteral("1\n2\n3") } }),
        QStringLiteral("网点：北京　运单编号：1、2、3 等 4 个　单号：1、2、3"));
    EXPECT_EQ(printedNotes({ { QStringLiteral("袋号"), QStringLiteral("\n") } }), QString());
}

} // namespace
