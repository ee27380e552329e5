#include "engine/sqlite/text_search.h"

#include "engine/sqlite/statement_budget.h"

namespace engine {

template <class Character>
TextSearch<Character>::TextSearch(View text, View part)
    : m_text(text)
    , m_part(part)
{
    if (part.size() > text.size())
        return;
    m_borders.assign(part.size() + 1, 0);
    for (std::size_t size = 2, border = 0; size <= part.size(); ++size) {
        while (border > 0 && part[size - 1] != part[border])
            border = m_borders[border];
        border += part[size - 1] == part[border];
        m_borders[size] = border;
    }
    StatementBudget::work(part.size());
}

template <class Character>
std::size_t TextSearch<Character>::next()
{
    if (m_part.size() > m_text.size())
        return View::npos;
    const std::size_t start = m_position;
    while (m_position < m_text.size()) {
        while (m_matched > 0 && (m_matched == m_part.size() || m_text[m_position] != m_part[m_matched]))
            m_matched = m_borders[m_matched];
        m_matched += m_text[m_position] == m_part[m_matched];
        ++m_position;
        if (m_matched == m_part.size()) {
            StatementBudget::work(m_position - start);
            return m_position - m_part.size();
        }
    }
    StatementBudget::work(m_position - start);
    return View::npos;
}

template class TextSearch<char>;
template class TextSearch<char32_t>;

} // namespace engine
