#include "evasion_writer.h"

#include <cctype>

std::string EvasionWriter::evasion()
{
    const std::size_t form = below(12);
    m_form = std::to_string(form);
    switch (form) {
    case 0:
        return "select q.* from (" + statement() + ") q";
    case 1:
        return "select * from (select * from (" + statement() + ") q) \"Q\"";
    case 2: {
        std::string alias = "s";
        const std::string table = tableText(plainTable(), alias);
        return "select " + otherCase(alias) + ".* from " + table + (oneIn(2) ? " where rownum<=1000000" : "");
    }
    case 3:
        return "select count(*) c0 from " + plainTable() + " natural join " + otherCase(plainTable());
    case 4:
        return "select * from " + plainTable() + " where bill_code in (select " + pick({ "BILL_CODE", "tab_sign.bill_code" })
            + " from tab_sign where bill_code in (select \"BILL_CODE\" from (" + otherCase("select * from TAB_SCAN_COME") + ")))";
    case 5:
        return "select a.bill_code c0 from tab_sign a join " + otherCase("TAB_PROBLEM")
            + " b using (bill_code), (TAB_SITE c cross join tab_site_basic)";
    case 6:
        return "select bill_code c0 from (select bill_code from tab_sign union all select bill_code from tab_problem) where bill_code not "
               "in"
               " (select tab_sign.bill_code from tab_scan_come tab_sign) order by (select max(remark) from TAB_SIGN), 1";
    case 7:
        return "select case when exists (" + statement() + ") then (select count(*) from " + plainTable() + ") else -1 end c0 from dual";
    default:
        return statement();
    }
}

/// A table with waybills.
std::string EvasionWriter::plainTable() { return pick({ "TAB_SCAN_COME", "TAB_SIGN", "TAB_PROBLEM" }); }

std::string EvasionWriter::selectWord()
{
    return pick({ "select", "SELECT", "select /*+index(a,TAB_SIGN_I1)*/", "select --from tab_site\n", "select/* from dual where */",
        "select all" });
}

std::string EvasionWriter::joinWords()
{
    return pick({ " join ", " left join ", " inner join ", " left outer join ", " /* , */ join --on\n " });
}

std::string EvasionWriter::otherCase(std::string text)
{
    for (char &letter : text)
        letter = oneIn(2) ? char(std::tolower(std::uint8_t(letter))) : char(std::toupper(std::uint8_t(letter)));
    return text;
}

std::string EvasionWriter::tableText(const std::string &name, std::string &alias)
{
    const std::size_t spelling = below(8);
    const std::size_t naming = below(8);
    m_ways.insert(m_form + "/" + std::to_string(spelling) + "/" + std::to_string(naming));
    return spelled(name, spelling) + named(name, alias, naming);
}

std::string EvasionWriter::spelled(const std::string &name, std::size_t spelling)
{
    switch (spelling) {
    case 0:
        return otherCase(name);
    case 1:
        return '"' + name + '"';
    case 2:
        return '"' + otherCase(name) + '"';
    case 3:
        return "/* dual */" + name;
    case 4:
        return name + "/*+ hint */";
    case 5:
        return "--dual\n" + name + "\n";
    case 6:
        return "\r\n\t\"" + name + "\"/**/";
    default:
        return name;
    }
}

/// What stands behind the table, of which `alias` is kept up.
std::string EvasionWriter::named(const std::string &table, std::string &alias, std::size_t naming)
{
    const std::vector<std::string> around = aliases();
    switch (naming) {
    case 0:
        alias = table;
        return "";
    case 1:
        return " as " + alias;
    case 2:
        return " \"" + otherCase(alias) + '"';
    case 3:
        alias = pick({ "BILL_CODE", "scan_site", "remark", "c0", "c1" });
        return " " + alias;
    case 4:
        alias = pick({ "TAB_BILL", "tab_sign", "TAB_SITE", "tab_scan_come" });
        return " " + alias;
    case 5:
        alias = around.empty() ? alias : around.front();
        return " " + alias;
    case 6:
        alias = pick({ "first", "last", "nulls", "kelvara", "dual", "rowid1", "\"from\"", "\"where 1=1\"" });
        return " " + alias;
    default:
        return " " + otherCase(alias);
    }
}

std::string EvasionWriter::columnText(const std::string &alias, const std::string &name)
{
    switch (below(8)) {
    case 0:
        return otherCase(alias) + "." + otherCase(name);
    case 1:
        return alias + ".\"" + otherCase(name) + '"';
    case 2:
        return alias + "/*.*/./**/" + name;
    case 3:
        return oneIn(4) ? name : StatementWriter::columnText(alias, name);
    default:
        return StatementWriter::columnText(alias, name);
    }
}
