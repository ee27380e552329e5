#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace engine {

/// Finds all places of a text where another begins, those that overlap too, in time text + part (Knuth, Morris and Pratt 1977).
template <class Character>
class TextSearch {
public:
    using View = std::basic_string_view<Character>;

    /// Both texts must live longer than the search; the part is not empty.
    TextSearch(View text, View part);
    /// The next place, from the front; npos when there is none. Throws when the time of the statement is up.
    std::size_t next();

private:
    View m_text;
    View m_part;
    std::vector<std::size_t> m_borders; ///< for each length: of the longest beginning that is an end too
    std::size_t m_position = 0;
    std::size_t m_matched = 0;
};

extern template class TextSearch<char>;
extern template class TextSearch<char32_t>;

} // namespace engine
