#pragma once

#include "platform/report/definition/value.h"

#include <vector>

class TDataSet;

namespace report {

/// What is wrong in an expression or a text that holds some, and at which character.
struct SyntaxError {
    QString what;
    int offset = 0;
};

/// Stands in a text for the number of pages until that is known; no field's text holds this character.
constexpr QChar pageCountMark(u'\uFDD0');

/// What the rows of a total are.
enum class Scope { Own, OnePage, Group, Report };
enum class TotalKind { Sum, Count, Average, Least, Greatest };

class Expression;

/// One SUM, COUNT, AVG, MIN or MAX as it stands in an expression.
struct TotalCall {
    TotalKind kind;
    Scope scope;
    const Expression *argument; ///< null: counts rows
    int offset; ///< in the text
};

/// What an expression needs to know to be evaluated.
struct Context {
    const TDataSet *rows = nullptr;
    int row = -1; ///< -1: before the first one
    int page = 0; ///< counted from 1
    const std::vector<Value> *totals = nullptr; ///< by the numbers that binding gave
};

/// Gives names and totals their meaning. Throws SyntaxError without an offset for what it does not know.
class Binder {
public:
    virtual ~Binder() = default;
    virtual int field(const QString &name) = 0;
    virtual int total(const TotalCall &call) = 0;
};

/// An expression of a report: fields, PAGE#, TOTALPAGES, LINE#, DATE, TIME, texts, numbers, + - * / & = <> < <= > >= AND OR NOT,
/// and functions. Nothing counts as 0 in sums and as "" in texts.
class Expression {
public:
    /// The expression must stay where it is from now on: totals refer to their arguments.
    void bind(Binder &binder);
    /// Throws Exception when a text is no number where one is needed, and for a division by 0.
    Value evaluate(const Context &context) const;

private:
    friend class ExpressionParser;
    enum class Kind {
        Constant,
        Field,
        PageNumber,
        PageCount,
        Line,
        Date,
        Time,
        Negative,
        Not,
        Add,
        Subtract,
        Multiply,
        Divide,
        Join,
        Equal,
        NotEqual,
        Less,
        LessEqual,
        Greater,
        GreaterEqual,
        And,
        Or,
        If,
        Format,
        Part,
        Round,
        FirstKnown,
        Total,
    };

    packet::Decimal number(const Context &context) const;
    bool holds(const Context &context) const;
    Value arithmetic(const Context &context) const;
    Value comparison(const Context &context) const;
    Value call(const Context &context) const;

    Kind m_kind = Kind::Constant;
    Value m_value {}; ///< Constant
    QString m_name {}; ///< Field
    int m_index = -1; ///< Field, Total
    int m_offset = 0;
    TotalKind m_total = TotalKind::Sum;
    Scope m_scope = Scope::Own;
    std::vector<Expression> m_operands {};
};

} // namespace report
