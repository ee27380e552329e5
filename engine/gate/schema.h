#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace engine::gate {

constexpr char capital(char letter) { return letter >= 'a' && letter <= 'z' ? char(letter - 32) : letter; }

/// Names are equal without regard to the case of their letters.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const
    {
        std::size_t hash = name.size();
        for (const char letter : name)
            hash = hash * 131 + std::size_t(capital(letter));
        return hash ^ hash >> 15;
    }
};

struct NameEqual {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const
    {
        if (left.size() != right.size())
            return false;
        for (std::size_t position = 0; position < left.size(); ++position) {
            if (capital(left[position]) != capital(right[position]))
                return false;
        }
        return true;
    }
};

/// The names of a table's columns, as the database writes them and in its order.
class ColumnSet {
public:
    ColumnSet() = default;
    ColumnSet(std::initializer_list<std::string> names)
    {
        for (const std::string &name : names)
            insert(name);
    }
    void insert(const std::string &name)
    {
        m_names.push_back(name);
        m_set.insert(name);
    }
    bool contains(std::string_view name) const { return m_set.contains(name); }
    std::size_t size() const { return m_names.size(); }
    bool empty() const { return m_names.empty(); }
    const std::vector<std::string> &names() const { return m_names; }

private:
    std::vector<std::string> m_names {};
    std::unordered_set<std::string, NameHash, NameEqual> m_set {};
};

/// The tables that statements may read, by name, with their columns.
using Schema = std::unordered_map<std::string, ColumnSet, NameHash, NameEqual>;

} // namespace engine::gate
