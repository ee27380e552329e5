#include "client/automation/automation.h"

#include "client/export/screen_conditions.h"
#include "platform/grid/db_grid.h"
#include "platform/report/report.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"

#include <QApplication>
#include <QLabel>

#include <cstdio>

using namespace platform;

namespace client {
namespace {

/// A component by its name or its path ("DataView1.DataViewGrid"); a bare name is looked for in frames too.
QObject *findByPath(const TComponentOwner &owner, const QString &path)
{
    QObject *found = owner.findComponent(path.section(u'.', 0, 0));
    const QString rest = path.section(u'.', 1);
    if (found && rest.isEmpty())
        return found;
    if (const auto *frame = dynamic_cast<TComponentOwner *>(found))
        return findByPath(*frame, rest);
    for (QObject *component : owner.components()) {
        const auto *frame = dynamic_cast<TComponentOwner *>(component);
        if (QObject *inFrame = frame && rest.isEmpty() ? findByPath(*frame, path) : nullptr)
            return inFrame;
    }
    return nullptr;
}

/// The condition that a person sees under this caption.
QObject *findByLabel(const TForm &form, const QString &label)
{
    const ConditionCaptions captions(form);
    for (QObject *component : form.components()) {
        const auto *widget = qobject_cast<const QWidget *>(component);
        if (widget && !qobject_cast<const QLabel *>(widget) && widget->isVisible() && captions.of(*widget) == label)
            return component;
    }
    return nullptr;
}

} // namespace

struct Automation::CommandRow {
    QStringView name;
    Member run;
};

const QList<Automation::CommandRow> &Automation::commands()
{
    static const QList<CommandRow> rows {
        { u"open", &Automation::open },
        { u"forms", &Automation::forms },
        { u"activate", &Automation::activate },
        { u"close", &Automation::close },
        { u"controls", &Automation::controls },
        { u"get", &Automation::get },
        { u"set", &Automation::set },
        { u"key", &Automation::key },
        { u"query", &Automation::query },
        { u"command", &Automation::runCommand },
        { u"click", &Automation::click },
        { u"page", &Automation::page },
        { u"columns", &Automation::columns },
        { u"rows", &Automation::rows },
        { u"footer", &Automation::footer },
        { u"title", &Automation::title },
        { u"cell", &Automation::cell },
        { u"colour", &Automation::colour },
        { u"filter", &Automation::filter },
        { u"chart", &Automation::chart },
        { u"print", &Automation::print },
        { u"export", &Automation::exportGrid },
        { u"copy", &Automation::copy },
        { u"find", &Automation::find },
        { u"screenshot", &Automation::screenshot },
        { u"answer", &Automation::answer },
        { u"events", &Automation::takeEvents },
        { u"quit", &Automation::quit },
    };
    return rows;
}

Automation::Automation(MainWindow *window, Strictness strictness)
    : m_window(window)
    , m_strictness(strictness)
{
    connect(Application, &TApplication::happened, this, &Automation::hear);
    Application->setMessageResponder(
        [this](const MessageRequest &request) { return m_answers.isEmpty() ? int(request.defaultAnswer()) : m_answers.dequeue(); });
    report::setPreviewResponder([this](const report::PreviewRequest &preview) { lookAt(preview); });
    for (const CommandRow &row : commands())
        m_dispatcher.add(row.name.toString(), [this, run = row.run](const QJsonObject &arguments) { return obey(run, arguments); });
    connect(&m_dispatcher, &Dispatcher::replied, this, &Automation::reply);
    connect(&m_reader, &LineReader::lineRead, &m_dispatcher, &Dispatcher::receive);
    connect(&m_reader, &LineReader::ended, &m_dispatcher, &Dispatcher::end);
    connect(&m_dispatcher, &Dispatcher::ended, qApp, [] { QApplication::exit(); });
    m_reader.start();
}

void Automation::hear(const QString &kind, const QVariantMap &particulars)
{
    QJsonObject event = QJsonObject::fromVariantMap(particulars);
    event[u"event"] = kind;
    m_events.append(event);
    const QString text = particulars[QStringLiteral("text")].toString();
    if (kind == u"error" || kind == u"cancelled")
        m_heard.failures.append(text);
    else if (kind == u"message")
        m_heard.messages.append(text);
    else if (kind == u"statement")
        m_heard.statement = true;
}

/// What a command sets off may fail in a handler, whose exception does not come back to here.
QJsonObject Automation::obey(Member command, const QJsonObject &arguments)
{
    activateWindow();
    m_heard = {};
    const QJsonObject reply = (this->*command)(arguments);
    if (!m_heard.failures.isEmpty())
        throw Exception(m_heard.failures.first());
    return reply;
}

void Automation::reply(const QJsonObject &reply)
{
    std::fputs(replyLine(reply).constData(), stdout);
    std::fflush(stdout);
    const bool refused = !reply[u"ok"].toBool() || !reply[u"asked"].toBool(true);
    if (!refused || m_strictness == Strictness::GoOn)
        return;
    m_dispatcher.stop();
    QApplication::exit(1);
}

/// Off-screen, a list that dropped down takes the activation along when it closes, and without it the focus would not move.
void Automation::activateWindow()
{
    if (!QApplication::activeModalWidget() && !QApplication::activePopupWidget())
        QApplication::setActiveWindow(m_window);
}

Automation::~Automation()
{
    Application->setMessageResponder({});
    report::setPreviewResponder({});
}

TForm *Automation::form(const QJsonObject &arguments) const
{
    const QString name = arguments[u"form"].toString();
    if (name.isEmpty()) {
        if (TForm *active = m_window->activeForm())
            return active;
        throw Exception(QStringLiteral("没有打开的窗口"));
    }
    for (TForm *form : m_window->forms()) {
        if (form->objectName() == name)
            return form;
    }
    throw Exception(QStringLiteral("没有打开名为“%1”的窗口").arg(name));
}

QObject *Automation::component(const QJsonObject &arguments, QStringView argument) const
{
    const QString path = requiredText(arguments, argument);
    TForm *searched = form(arguments);
    if (QObject *found = findByPath(*searched, path))
        return found;
    if (QObject *found = findByLabel(*searched, path))
        return found;
    throw Exception(QStringLiteral("窗口里没有名为“%1”的控件").arg(path));
}

QWidget *Automation::control(const QJsonObject &arguments) const
{
    if (auto *widget = qobject_cast<QWidget *>(component(arguments)))
        return widget;
    throw Exception(QStringLiteral("“%1”不是可见的控件").arg(arguments[u"control"].toString()));
}

QWidget *Automation::controlInFront(const QJsonObject &arguments) const
{
    TForm *wanted = form(arguments);
    if (wanted != m_window->activeForm())
        wanted->showForm();
    return control(arguments);
}

TDBGridEh *Automation::view(const QJsonObject &arguments) const
{
    if (!arguments.contains(u"view")) {
        if (!m_window->currentGrid())
            throw Exception(QStringLiteral("当前没有表格"));
        return m_window->currentGrid();
    }
    QObject *named = component(arguments, u"view");
    if (const auto *frame = dynamic_cast<TComponentOwner *>(named))
        named = frame->findComponent(u"DataViewGrid");
    if (auto *grid = qobject_cast<TDBGridEh *>(named))
        return grid;
    throw Exception(QStringLiteral("“%1”不是表格").arg(arguments[u"view"].toString()));
}

QString requiredText(const QJsonObject &arguments, QStringView name)
{
    const QString text = arguments[name].toString();
    if (text.isEmpty())
        throw Exception(QStringLiteral("缺少参数“%1”").arg(name));
    return text;
}

Qt::KeyboardModifiers modifiersOf(const QJsonObject &arguments)
{
    const QJsonValue given = arguments[u"modifiers"];
    QStringList names = given.toString().toLower().split(u'+', Qt::SkipEmptyParts);
    for (const QJsonValue &name : given.toArray())
        names.append(name.toString().toLower());
    Qt::KeyboardModifiers modifiers;
    for (const QString &name : names) {
        if (name == u"ctrl")
            modifiers |= Qt::ControlModifier;
        else if (name == u"shift")
            modifiers |= Qt::ShiftModifier;
        else if (name == u"alt")
            modifiers |= Qt::AltModifier;
        else
            throw Exception(QStringLiteral("不认识的修饰键“%1”，只有 ctrl、shift 和 alt").arg(name));
    }
    return modifiers;
}

} // namespace client
