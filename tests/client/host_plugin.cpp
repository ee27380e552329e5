#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/library_loader.h"
#include "platform/toolkit/plugin_interface.h"
#include "platform/toolkit/published.h"
#include "platform/toolkit/screen.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace platform;

// A plug-in whose screens take any name. Its query shows 1,200 rows, cut by a limit when "cut" is asked for; a screen named "frm_Stubborn"
// asks before it closes.

namespace {

const LibraryRegistration registration({
    [] { publishedList(Application->mainForm(), "GlobalCdsAddr"); },
    [] { Application->record(QStringLiteral("detach"), {}); },
});

class AnyScreen : public TForm {
public:
    AnyScreen(const QString &name, const QString &rights)
        : TForm(Application, name, u"窗口 " + name)
    {
        notifyHost(this, hostFormCreating);
        setProperty("QueryButton", QVariant::fromValue<QObject *>(Button1));
        setProperty("Right1", rights[0] == u'1');
        setProperty("Right2", rights[1] == u'1');
        setProperty("Right3", rights[2] == u'1');
        auto *layout = new QVBoxLayout(this);
        Edit1->setPlaceholderText(QStringLiteral("编号"));
        Edit1->setFocusPolicy(Qt::NoFocus);
        for (QWidget *widget : std::initializer_list<QWidget *> { Edit1, Button1, DataViewGrid })
            layout->addWidget(widget);
        DS->setDataSet(cds);
        DataViewGrid->setDataSource(DS);
        DataViewGrid->setColumns({ { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号") } });
        handle(Button1, &QPushButton::clicked, this, [this] { query(); });
    }
    ~AnyScreen() override { Application->record(QStringLiteral("freed"), { { QStringLiteral("form"), objectName() } }); }

protected:
    void FormActivate() override
    {
        notifyHost(this, hostFormActivated);
        PublishedMethod(Application->mainForm(), "ResetSearch").call(DataViewGrid);
    }
    void FormClose(TCloseAction &action) override
    {
        const bool stays = objectName() == u"frm_Stubborn" && Application->messageBox(QStringLiteral("?"), caption(), 289) == idCancel;
        action = stays ? TCloseAction::None : TCloseAction::Free;
        if (!stays)
            notifyHost(this, hostFormClosed);
    }

private:
    void query()
    {
        packet::Builder rows({ { "CODE", packet::ColumnType::Text } });
        for (int row = 0; row < 1200; ++row) {
            rows.addText(0, std::to_string(row));
            rows.endRow();
        }
        cds->setData(rows.finish(Edit1->text() == u"cut" ? packet::Extent::Truncated : packet::Extent::Whole));
    }

    PUBLISHED(QLineEdit, Edit1);
    PUBLISHED(QPushButton, Button1);
    PUBLISHED(TDBGridEh, DataViewGrid);
    PUBLISHED(TDataSource, DS);
    PUBLISHED(TClientDataSetEx, cds);
};

} // namespace

KELVARA_EXPORT void KELVARA_CALL exec(TApplication *, TScreen *, QObject *const *, int, const char *formName)
{
    const QString name = QString::fromUtf8(formName);
    (new AnyScreen(name.chopped(3), name.right(3)))->showForm();
}
