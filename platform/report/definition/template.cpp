#include "platform/report/definition/template.h"

#include "platform/report/definition/expression_parser.h"

namespace report {

namespace {

/// The bracket that ends the expression begun before `position`; brackets in its quotes do not count. -1 when there is none.
qsizetype closingBracket(const QString &text, qsizetype position)
{
    QChar quote;
    for (; position < text.size(); ++position) {
        const QChar character = text[position];
        if (!quote.isNull())
            quote = character == quote ? QChar() : quote;
        else if (character == u'\'' || character == u'"')
            quote = character;
        else if (character == u']')
            return position;
    }
    return -1;
}

} // namespace

Template Template::parse(const QString &text)
{
    Template result;
    QString plain;
    const auto flush = [&] {
        if (!plain.isEmpty())
            result.m_parts.push_back({ .text = plain });
        plain.clear();
    };
    for (qsizetype position = 0; position < text.size(); ++position) {
        if (text[position] != u'[') {
            plain += text[position];
        } else if (position + 1 < text.size() && text[position + 1] == u'[') {
            plain += text[++position];
        } else {
            const qsizetype begin = position + 1;
            position = closingBracket(text, begin);
            if (position < 0)
                throw SyntaxError { QStringLiteral("“[”没有对应的“]”"), int(begin) - 1 };
            flush();
            try {
                const QStringView source = QStringView(text).mid(begin, position - begin);
                result.m_parts.push_back({ {}, std::make_unique<Expression>(parseExpression(source)), int(begin) });
            } catch (const SyntaxError &error) {
                throw SyntaxError { error.what, error.offset + int(begin) };
            }
        }
    }
    flush();
    return result;
}

QString Template::literal(const QString &text) { return QString(text).replace(u'[', QStringLiteral("[[")); }

void Template::bind(Binder &binder)
{
    for (Part &part : m_parts) {
        try {
            if (part.expression)
                part.expression->bind(binder);
        } catch (const SyntaxError &error) {
            throw SyntaxError { error.what, error.offset + part.offset };
        }
    }
}

Value Template::evaluate(const Context &context, const QString &format) const
{
    if (isOneExpression())
        return m_parts.front().expression->evaluate(context);
    QString text;
    for (const Part &part : m_parts)
        text += part.expression ? formatted(part.expression->evaluate(context), format) : part.text;
    return text;
}

} // namespace report
