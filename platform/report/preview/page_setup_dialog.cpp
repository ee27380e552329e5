#include "platform/report/preview/page_setup_dialog.h"

#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

using namespace platform;

namespace report {

namespace {

constexpr qreal mostMargin = 100;

QWidget *sideBySide(std::initializer_list<std::pair<QString, QWidget *>> fields)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const auto &[caption, field] : fields) {
        layout->addWidget(plainLabel(caption));
        layout->addWidget(field);
    }
    layout->addStretch();
    return row;
}

} // namespace

PageSetupDialog::PageSetupDialog(const PageSetup &setup, QWidget *parent)
    : QDialog(parent)
    , m_papers(new QComboBox(this))
    , m_width(addLength(setup.paper.width() / qreal(millimetre), leastSide / qreal(millimetre), mostSide / qreal(millimetre)))
    , m_height(addLength(setup.paper.height() / qreal(millimetre), leastSide / qreal(millimetre), mostSide / qreal(millimetre)))
    , m_turns(new QComboBox(this))
    , m_left(addLength(setup.margins.left(), 0, mostMargin))
    , m_top(addLength(setup.margins.top(), 0, mostMargin))
    , m_right(addLength(setup.margins.right(), 0, mostMargin))
    , m_bottom(addLength(setup.margins.bottom(), 0, mostMargin))
    , m_wideColumns(new QComboBox(this))
    , m_fault(plainLabel({}, this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(QStringLiteral("页面设置"));
    for (const NamedPaper &paper : namedPapers())
        m_papers->addItem(paper.name.toString());
    m_papers->addItem(QStringLiteral("自定义"));
    const auto known = std::ranges::find(namedPapers(), setup.paper, &NamedPaper::size);
    m_papers->setCurrentIndex(int(known - namedPapers().begin()));
    m_turns->addItems({ QStringLiteral("自动"), QStringLiteral("纵向"), QStringLiteral("横向") });
    m_turns->setCurrentIndex(int(setup.turn));
    m_wideColumns->addItems(
        { QStringLiteral("自动：先缩小，太小时分到多页"), QStringLiteral("缩小到一页宽"), QStringLiteral("分到多页，每页重复冻结列") });
    m_wideColumns->setCurrentIndex(int(setup.wideColumns));
    QPalette alarming = m_fault->palette();
    alarming.setColor(QPalette::WindowText, QColor(0xb0, 0x00, 0x20));
    m_fault->setPalette(alarming);

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("纸张"), m_papers);
    form->addRow(QStringLiteral("大小"), sideBySide({ { QStringLiteral("宽"), m_width }, { QStringLiteral("高"), m_height } }));
    form->addRow(QStringLiteral("方向"), m_turns);
    form->addRow(QStringLiteral("页边距"), sideBySide({ { QStringLiteral("上"), m_top }, { QStringLiteral("下"), m_bottom } }));
    form->addRow({}, sideBySide({ { QStringLiteral("左"), m_left }, { QStringLiteral("右"), m_right } }));
    form->addRow(QStringLiteral("列太宽时"), m_wideColumns);
    form->addRow(m_fault);
    form->addRow(m_buttons);

    handle(m_papers, &QComboBox::activated, this, &PageSetupDialog::usePaper);
    for (QDoubleSpinBox *length : { m_width, m_height, m_left, m_top, m_right, m_bottom })
        handle(length, &QDoubleSpinBox::valueChanged, this, &PageSetupDialog::showSense);
    handle(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    handle(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    showSense();
}

QDoubleSpinBox *PageSetupDialog::addLength(qreal value, qreal least, qreal most)
{
    auto *box = new QDoubleSpinBox(this);
    box->setDecimals(1);
    box->setRange(least, most);
    box->setSuffix(QStringLiteral(" 毫米"));
    box->setValue(value);
    return box;
}

PageSetup PageSetupDialog::setup() const
{
    // A named paper exactly, not as the boxes round it.
    const int index = m_papers->currentIndex();
    const QSize own(qRound(m_width->value() * millimetre), qRound(m_height->value() * millimetre));
    return { .paper = index < namedPapers().size() ? namedPapers()[index].size : own,
        .turn = Turn(m_turns->currentIndex()),
        .margins = { m_left->value(), m_top->value(), m_right->value(), m_bottom->value() },
        .wideColumns = WideColumns(m_wideColumns->currentIndex()) };
}

void PageSetupDialog::usePaper(int index)
{
    if (index >= namedPapers().size())
        return showSense();
    const NamedPaper &paper = namedPapers()[index];
    m_width->setValue(paper.size.width() / qreal(millimetre));
    m_height->setValue(paper.size.height() / qreal(millimetre));
    for (QDoubleSpinBox *side : { m_left, m_right })
        side->setValue(std::max(side->value(), paper.leastSideMargin));
    showSense();
}

void PageSetupDialog::showSense()
{
    const bool own = m_papers->currentIndex() >= namedPapers().size();
    m_width->setEnabled(own);
    m_height->setEnabled(own);
    const bool good = setup().makesSense();
    m_fault->setText(good ? QString() : QStringLiteral("页边距太大，纸上没有地方打印。"));
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(good);
}

} // namespace report
