#include "client/options.h"

#include "platform/toolkit/exception.h"

#include <gtest/gtest.h>

using namespace client;
using namespace platform;

namespace {

TEST(Options, EachIsReadAndTheRestKeepsItsDefault)
{
    const Options options
        = readOptions(QStringLiteral("--database|sqlite:a b.db|--login-site|上海|--now|2026-03-15 16:30:00|--automation").split(u'|'));
    EXPECT_EQ(options.database, QStringLiteral("sqlite:a b.db"));
    EXPECT_EQ(options.loginSite, QStringLiteral("上海"));
    EXPECT_EQ(options.now.time(), QTime(16, 30));
    EXPECT_TRUE(options.automation);
    EXPECT_FALSE(options.serverNow.isValid());
    EXPECT_EQ(readOptions(QStringLiteral("--server|https://a:1|--compress|--server=b").split(u'|')).servers,
        (QStringList { QStringLiteral("https://a:1"), QStringLiteral("b") }));
    EXPECT_TRUE(readOptions({}).loginSite.isEmpty());
    EXPECT_EQ(readOptions({ QStringLiteral("--database=sqlite:a=b.db") }).database, QStringLiteral("sqlite:a=b.db"));
}

TEST(Options, WhatIsWrongIsNamed)
{
    const std::pair<const char16_t *, const char16_t *> wrong[] = {
        { u"--databse|x", u"--databse" },
        { u"--database", u"--database" },
        { u"--database|--automation", u"--database" },
        { u"--automation=yes", u"--automation" },
        { u"--now|morgen", u"morgen" },
        { u"--server-now=2026-02-30 10:00", u"2026-02-30" },
        { u"file.db", u"file.db" },
        { u"--server", u"--server" },
    };
    for (const auto &[arguments, named] : wrong) {
        try {
            readOptions(QString::fromUtf16(arguments).split(u'|'));
            ADD_FAILURE() << QString::fromUtf16(arguments).toStdString();
        } catch (const std::exception &exception) {
            EXPECT_TRUE(exceptionMessage(exception).contains(QString::fromUtf16(named))) << exception.what();
        }
    }
}

} // namespace
