#include "server/base/csv.h"

#include "packet/utf8.h"

#include <algorithm>
#include <stdexcept>

namespace server {

namespace {

/// Takes a cell off the front of the text, up to the separator that follows it.
std::string nextCell(std::string_view &text, int &line)
{
    std::string cell;
    if (!text.starts_with('"')) {
        cell = text.substr(0, text.find_first_of(",\r\n"));
        text.remove_prefix(cell.size());
        return cell;
    }
    const int begin = line;
    for (text.remove_prefix(1);; text.remove_prefix(1)) {
        if (text.empty())
            throw std::runtime_error("第 " + std::to_string(begin) + " 行的引号没有结束，请改正");
        line += text.front() == '\n';
        if (text.starts_with("\"\""))
            text.remove_prefix(1);
        else if (text.front() == '"')
            break;
        cell += text.front();
    }
    text.remove_prefix(1);
    if (!text.empty() && text.find_first_of(",\r\n") != 0)
        throw std::runtime_error("第 " + std::to_string(line) + " 行的引号后面还有文字，请改正");
    return cell;
}

} // namespace

std::vector<CsvRow> readCsv(std::string_view text)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (!packet::isUtf8(text))
        throw std::runtime_error("文件不是 UTF-8 编码，请在电子表格中另存为“CSV UTF-8”");
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    std::vector<CsvRow> rows;
    for (int line = 1; !text.empty(); ++line) {
        CsvRow row { line };
        row.cells.push_back(nextCell(text, line));
        while (text.starts_with(',')) {
            text.remove_prefix(1);
            row.cells.push_back(nextCell(text, line));
        }
        text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(1, text.size()));
        if (std::any_of(row.cells.begin(), row.cells.end(), [](const std::string &cell) { return !cell.empty(); }))
            rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace server
