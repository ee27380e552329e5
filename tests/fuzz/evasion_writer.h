#pragma once

#include "statement_writer.h"

#include <set>

/// Writes the statements of a StatementWriter in ways that may hide from a reader of statements which table they read.
class EvasionWriter : public StatementWriter {
public:
    using StatementWriter::StatementWriter;
    std::string evasion();
    /// The ways that it has taken: the form of the statement, how a table is written and what it is called.
    const std::set<std::string> &ways() const { return m_ways; }

protected:
    std::string selectWord() override;
    std::string tableText(const std::string &name, std::string &alias) override;
    std::string joinWords() override;
    std::string columnText(const std::string &alias, const std::string &name) override;

private:
    std::string otherCase(std::string text);
    std::string spelled(const std::string &name, std::size_t spelling);
    std::string named(const std::string &table, std::string &alias, std::size_t naming);
    std::string plainTable();

    std::string m_form {};
    std::set<std::string> m_ways {};
};
