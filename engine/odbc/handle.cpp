#include "engine/odbc/handle.h"

#include "engine/engine.h"
#include "engine/gate/gate.h"
#include "engine/odbc/wide_text.h"

#include <algorithm>

namespace engine::odbc {

namespace {

/// Space for a text that the driver writes, with a zero behind it.
class TextBuffer {
public:
    SQLWCHAR *wide() { return m_wide; }
    SQLCHAR *narrow() { return reinterpret_cast<SQLCHAR *>(m_wide); }
    static constexpr SQLSMALLINT characters() { return 1024; }
    static constexpr SQLSMALLINT bytes() { return sizeof(SQLWCHAR) * 1024; }
    std::string text(Encoding encoding) const
    {
        if (encoding == Encoding::Utf8)
            return reinterpret_cast<const char *>(m_wide);
        std::string text;
        appendText(m_wide, std::size_t(std::find(m_wide, m_wide + characters(), SQLWCHAR(0)) - m_wide), text);
        return text;
    }

private:
    SQLWCHAR m_wide[1024] = {};
};

} // namespace

Handle::Handle(SQLSMALLINT type, SQLHANDLE parent, Encoding encoding)
    : m_type(type)
    , m_encoding(encoding)
{
    if (!SQL_SUCCEEDED(SQLAllocHandle(type, parent, &m_handle)))
        throw Error(Failure::Unavailable, "ODBC 驱动程序管理器不可用，请检查它的安装");
}

Handle::~Handle()
{
    if (!m_handle)
        return;
    if (m_type == SQL_HANDLE_DBC)
        SQLDisconnect(m_handle);
    SQLFreeHandle(m_type, m_handle);
}

Diagnosis diagnosisOf(const Handle &handle)
{
    TextBuffer state;
    TextBuffer message;
    SQLINTEGER code = 0;
    const SQLRETURN result = handle.encoding() == Encoding::Wide
        ? SQLGetDiagRecW(handle.type(), handle, 1, state.wide(), &code, message.wide(), TextBuffer::characters(), nullptr)
        : SQLGetDiagRec(handle.type(), handle, 1, state.narrow(), &code, message.narrow(), TextBuffer::bytes(), nullptr);
    if (!SQL_SUCCEEDED(result))
        return { "HY000", "驱动程序没有说明原因" };
    const std::string whole = message.text(handle.encoding());
    // "[unixODBC][driver]message"
    std::string_view words = whole;
    while (words.starts_with('[') && words.find(']') != std::string_view::npos)
        words.remove_prefix(words.find(']') + 1);
    words.remove_prefix(std::min(words.find_first_not_of(" \n"), words.size()));
    return { state.text(handle.encoding()), std::string(words) };
}

void fail(const Handle &handle)
{
    const Diagnosis diagnosis = diagnosisOf(handle);
    // 57P01 to 57P03 are PostgreSQL's for a session that its server has ended.
    if (diagnosis.state.starts_with("08") || diagnosis.state.starts_with("57P0"))
        throw Error(Failure::Unavailable, "数据库连接中断：" + diagnosis.message + "；请检查数据库服务器和网络，稍后再试");
    if (diagnosis.state == "HYT00" || diagnosis.state == "HYT01")
        throw Error(Failure::TimeLimit, "查询超过了规定的时间，请缩小查询范围");
    throw Error(Failure::Database, "数据库报告错误：" + diagnosis.message);
}

bool execute(const Handle &statement, std::string_view sql)
{
    if (statement.encoding() == Encoding::Wide) {
        auto wide = wideOf(sql);
        return SQL_SUCCEEDED(SQLExecDirectW(statement, wide.data(), SQL_NTS));
    }
    std::string narrow(sql);
    return SQL_SUCCEEDED(SQLExecDirect(statement, reinterpret_cast<SQLCHAR *>(narrow.data()), SQL_NTS));
}

Description describe(const Handle &statement, SQLUSMALLINT column)
{
    TextBuffer name;
    TextBuffer typeName;
    SQLSMALLINT nullable = 0;
    Description out;
    SQLRETURN result = SQL_ERROR;
    if (statement.encoding() == Encoding::Wide) {
        result = SQLDescribeColW(
            statement, column, name.wide(), TextBuffer::characters(), nullptr, &out.type, &out.size, &out.digits, &nullable);
        SQLColAttributeW(statement, column, SQL_DESC_TYPE_NAME, typeName.wide(), TextBuffer::bytes(), nullptr, nullptr);
    } else {
        result
            = SQLDescribeCol(statement, column, name.narrow(), TextBuffer::bytes(), nullptr, &out.type, &out.size, &out.digits, &nullable);
        SQLColAttribute(statement, column, SQL_DESC_TYPE_NAME, typeName.narrow(), TextBuffer::bytes(), nullptr, nullptr);
    }
    if (!SQL_SUCCEEDED(result))
        fail(statement);
    out.name = name.text(statement.encoding());
    out.typeName = gate::upperCase(typeName.text(statement.encoding()));
    return out;
}

std::string_view textOf(Encoding encoding, const char *bytes, std::size_t size, std::string &buffer)
{
    if (encoding == Encoding::Utf8)
        return { bytes, size };
    buffer.clear();
    appendText(reinterpret_cast<const SQLWCHAR *>(bytes), size / sizeof(SQLWCHAR), buffer);
    return buffer;
}

} // namespace engine::odbc
