#include "support.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace engine;
using namespace engine::test;

class Statements : public testing::Test {
protected:
    TemporaryDatabase m_database { fileText("demo/schema.sql") };
    std::unique_ptr<Engine> m_engine = openEngine(m_database.url());
};

TEST_F(Statements, EveryStatementOfTheScreensRuns)
{
    const auto statements = paragraphs("tests/engine/statements.sql");
    ASSERT_GE(statements.size(), 80u);
    for (const std::string &statement : statements) {
        const Outcome outcome = outcomeOf(*m_engine, statement);
        EXPECT_FALSE(outcome.failed) << outcome.message << "\n" << statement;
    }
}

TEST_F(Statements, WhatTheDatabaseRejectsFailsWithAMessage)
{
    for (const std::string &statement : paragraphs("tests/engine/rejected.sql")) {
        const Outcome outcome = outcomeOf(*m_engine, statement);
        ASSERT_TRUE(outcome.failed) << statement;
        EXPECT_TRUE(outcome.failure == Failure::Database || outcome.failure == Failure::Refused) << outcome.message;
    }
}

} // namespace
