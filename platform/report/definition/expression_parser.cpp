#include "platform/report/definition/expression_parser.h"

#include <QHash>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

namespace report {

namespace {

constexpr int deepest = 60;

} // namespace

/// Recursive descent, one function for each strength of binding.
class ExpressionParser {
public:
    explicit ExpressionParser(QStringView source)
        : m_source(source)
    {
    }

    Expression parse()
    {
        Expression expression = alternatives();
        if (!skipBlanks())
            return expression;
        fail(QStringLiteral("此处多出“%1”").arg(m_source.mid(m_position, 20)));
    }

private:
    using Kind = Expression::Kind;
    struct Function {
        Kind kind;
        int arguments;
    };
    using Operators = std::initializer_list<std::pair<QStringView, Kind>>;

    [[noreturn]] void fail(const QString &what) const { throw SyntaxError { what, int(m_position) }; }

    /// False at the end.
    bool skipBlanks()
    {
        while (m_position < m_source.size() && m_source[m_position].isSpace())
            ++m_position;
        return m_position < m_source.size();
    }

    static bool isNameCharacter(QChar character) { return character.isLetterOrNumber() || character == u'_' || character == u'#'; }

    bool take(QStringView symbol)
    {
        if (!skipBlanks() || !m_source.mid(m_position).startsWith(symbol, Qt::CaseInsensitive))
            return false;
        const qsizetype after = m_position + symbol.size();
        const bool word = symbol[0].isLetter();
        if (word && after < m_source.size() && isNameCharacter(m_source[after]))
            return false;
        m_position = after;
        return true;
    }

    void require(QStringView symbol)
    {
        if (!take(symbol))
            fail(QStringLiteral("此处应是“%1”").arg(symbol));
    }

    Expression made(Kind kind, std::vector<Expression> operands) const
    {
        Expression expression;
        expression.m_kind = kind;
        expression.m_offset = int(m_position);
        expression.m_operands = std::move(operands);
        return expression;
    }

    Expression chain(Expression (ExpressionParser::*operand)(), Operators operators)
    {
        Expression left = (this->*operand)();
        for (int links = 0;; ++links) {
            const auto found = std::find_if(operators.begin(), operators.end(), [this](const auto &entry) { return take(entry.first); });
            if (found == operators.end())
                return left;
            // A chain is a tree that leans to one side, so its length is its depth.
            if (links == deepest)
                fail(QStringLiteral("表达式太长"));
            std::vector<Expression> operands;
            operands.push_back(std::move(left));
            operands.push_back((this->*operand)());
            left = made(found->second, std::move(operands));
        }
    }

    Expression alternatives() { return chain(&ExpressionParser::conditions, { { u"or", Kind::Or } }); }
    Expression conditions() { return chain(&ExpressionParser::conditionOrNot, { { u"and", Kind::And } }); }
    Expression conditionOrNot()
    {
        if (++m_depth > deepest)
            fail(QStringLiteral("表达式嵌套太深"));
        Expression expression = take(u"not") ? made(Kind::Not, operandOf(&ExpressionParser::conditionOrNot)) : comparisons();
        --m_depth;
        return expression;
    }
    Expression comparisons()
    {
        return chain(&ExpressionParser::sums,
            { { u"<>", Kind::NotEqual }, { u"<=", Kind::LessEqual }, { u">=", Kind::GreaterEqual }, { u"=", Kind::Equal },
                { u"<", Kind::Less }, { u">", Kind::Greater } });
    }
    Expression sums()
    {
        return chain(&ExpressionParser::products, { { u"+", Kind::Add }, { u"-", Kind::Subtract }, { u"&", Kind::Join } });
    }
    Expression products() { return chain(&ExpressionParser::signedOperand, { { u"*", Kind::Multiply }, { u"/", Kind::Divide } }); }

    Expression signedOperand()
    {
        if (++m_depth > deepest)
            fail(QStringLiteral("表达式嵌套太深"));
        Expression expression = take(u"-") ? made(Kind::Negative, operandOf(&ExpressionParser::signedOperand)) : primary();
        --m_depth;
        return expression;
    }

    std::vector<Expression> operandOf(Expression (ExpressionParser::*operand)())
    {
        std::vector<Expression> operands;
        operands.push_back((this->*operand)());
        return operands;
    }

    Expression primary()
    {
        if (!skipBlanks())
            fail(QStringLiteral("表达式不完整"));
        const QChar first = m_source[m_position];
        if (take(u"(")) {
            Expression inner = alternatives();
            require(u")");
            return inner;
        }
        if (first == u'\'' || first == u'"')
            return textConstant(first);
        if (first.isDigit() || first == u'.')
            return numberConstant();
        if (isNameCharacter(first))
            return named();
        fail(QStringLiteral("此处不能是“%1”").arg(first));
    }

    Expression constant(Value value) const
    {
        Expression expression = made(Kind::Constant, {});
        expression.m_value = std::move(value);
        return expression;
    }

    Expression textConstant(QChar quote)
    {
        const qsizetype end = m_source.indexOf(quote, m_position + 1);
        if (end < 0)
            fail(QStringLiteral("引号没有结束"));
        const QString text = m_source.mid(m_position + 1, end - m_position - 1).toString();
        m_position = end + 1;
        return constant(text);
    }

    Expression numberConstant()
    {
        const qsizetype begin = m_position;
        while (m_position < m_source.size() && (m_source[m_position].isDigit() || m_source[m_position] == u'.'))
            ++m_position;
        const auto number = packet::Decimal::parse(m_source.mid(begin, m_position - begin).toString().toStdString());
        if (number)
            return constant(*number);
        m_position = begin;
        fail(QStringLiteral("此处应是数字"));
    }

    Expression named()
    {
        static const QHash<QString, Kind> variables {
            { QStringLiteral("PAGE#"), Kind::PageNumber },
            { QStringLiteral("PAGE"), Kind::PageNumber },
            { QStringLiteral("TOTALPAGES"), Kind::PageCount },
            { QStringLiteral("LINE#"), Kind::Line },
            { QStringLiteral("LINE"), Kind::Line },
            { QStringLiteral("DATE"), Kind::Date },
            { QStringLiteral("TIME"), Kind::Time },
        };
        const qsizetype begin = m_position;
        while (m_position < m_source.size() && isNameCharacter(m_source[m_position]))
            ++m_position;
        const QString name = m_source.mid(begin, m_position - begin).toString();
        const qsizetype afterName = m_position;
        if (take(u"("))
            return function(name.toUpper(), begin);
        m_position = afterName;
        const auto variable = variables.constFind(name.toUpper());
        Expression expression = made(variable == variables.cend() ? Kind::Field : *variable, {});
        expression.m_name = name;
        expression.m_offset = int(begin);
        return expression;
    }

    Expression function(const QString &name, qsizetype begin)
    {
        static const QHash<QString, Function> functions {
            { QStringLiteral("IF"), { Kind::If, 3 } },
            { QStringLiteral("FORMAT"), { Kind::Format, 2 } },
            { QStringLiteral("COPY"), { Kind::Part, 3 } },
            { QStringLiteral("ROUND"), { Kind::Round, 2 } },
            { QStringLiteral("NVL"), { Kind::FirstKnown, 2 } },
        };
        static const QHash<QString, TotalKind> totals {
            { QStringLiteral("SUM"), TotalKind::Sum },
            { QStringLiteral("COUNT"), TotalKind::Count },
            { QStringLiteral("AVG"), TotalKind::Average },
            { QStringLiteral("MIN"), TotalKind::Least },
            { QStringLiteral("MAX"), TotalKind::Greatest },
        };
        if (const auto total = totals.constFind(name); total != totals.cend())
            return totalCall(*total, begin);
        const auto found = functions.constFind(name);
        if (found == functions.cend()) {
            m_position = begin;
            fail(QStringLiteral("不认识的函数“%1”").arg(name.left(40)));
        }
        std::vector<Expression> operands;
        for (int argument = 0; argument < found->arguments; ++argument) {
            if (argument > 0)
                require(u",");
            operands.push_back(alternatives());
        }
        require(u")");
        return made(found->kind, std::move(operands));
    }

    /// SUM(expression[, PAGE | GROUP | REPORT]); COUNT may stand without an expression.
    Expression totalCall(TotalKind kind, qsizetype begin)
    {
        if (m_inTotal)
            fail(QStringLiteral("合计之内不能再有合计"));
        m_inTotal = true;
        std::vector<Expression> operands;
        std::optional<Scope> given;
        if (kind == TotalKind::Count)
            given = scope();
        if (!given && !(kind == TotalKind::Count && take(u")"))) {
            operands.push_back(alternatives());
            if (take(u",") && !(given = scope()))
                fail(QStringLiteral("合计范围应是 PAGE、GROUP 或 REPORT"));
            require(u")");
        } else if (given) {
            require(u")");
        }
        m_inTotal = false;
        Expression expression = made(Kind::Total, std::move(operands));
        expression.m_total = kind;
        expression.m_scope = given.value_or(Scope::Own);
        expression.m_offset = int(begin);
        return expression;
    }

    std::optional<Scope> scope()
    {
        return take(u"page")  ? std::optional(Scope::OnePage)
            : take(u"group")  ? std::optional(Scope::Group)
            : take(u"report") ? std::optional(Scope::Report)
                              : std::nullopt;
    }

    QStringView m_source;
    qsizetype m_position = 0;
    int m_depth = 0;
    bool m_inTotal = false;
};

Expression parseExpression(QStringView source) { return ExpressionParser(source).parse(); }

} // namespace report
