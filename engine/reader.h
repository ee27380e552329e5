#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace engine {

/// For whom a statement runs: what the rules of tables put in place of :sites, :site and :employee. The values are written as literals
/// that every database reads alike, once, so that statements need not do it; to be shared between statements of one reader.
class Reader {
public:
    static constexpr std::size_t sitesTogether = 1000; ///< Oracle takes no more values in one list

    /// `sites`: names of the sites whose rows belong to the reader; none: no rows do. `site`: name of the reader's own. `employee`: code.
    /// An empty value is NULL, which nothing equals.
    Reader(const std::vector<std::string> &sites, std::string_view site, std::string_view employee);

    /// Why statements cannot run for the reader; empty when they can.
    const std::string &fault() const { return m_fault; }
    std::size_t siteCount() const { return m_siteCount; }
    /// "'a','b'", so many together; never empty.
    const std::vector<std::string> &sites() const { return m_sites; }
    const std::string &site() const { return m_site; }
    const std::string &employee() const { return m_employee; }

private:
    void append(std::string &out, std::string_view value, std::string_view what);

    std::string m_fault;
    std::size_t m_siteCount;
    std::vector<std::string> m_sites;
    std::string m_site;
    std::string m_employee;
};

} // namespace engine
