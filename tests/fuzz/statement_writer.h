#pragma once

#include <random>
#include <string>
#include <vector>

/// Writes statements over the tables of the demo network that the gate lets through and whose values have a type: what one database
/// makes of them every other should.
class StatementWriter {
public:
    explicit StatementWriter(std::uint64_t seed)
        : m_random(seed)
    {
    }
    StatementWriter(const StatementWriter &) = delete;
    virtual ~StatementWriter() = default;
    std::string statement();

protected:
    std::size_t below(std::size_t bound) { return std::size_t(m_random() % bound); }
    bool oneIn(std::size_t number) { return below(number) == 0; }
    std::string pick(std::initializer_list<const char *> choices) { return *(choices.begin() + below(choices.size())); }

    /// What stands for "select".
    virtual std::string selectWord() { return "select"; }
    /// A table in a from clause; may change the alias by which it is known.
    virtual std::string tableText(const std::string &name, std::string &alias) { return name + " " + alias; }
    virtual std::string joinWords() { return pick({ " join ", " left join " }); }
    virtual std::string columnText(const std::string &alias, const std::string &name) { return alias + "." + name; }
    /// The aliases of the tables in sight, those of the blocks around first.
    std::vector<std::string> aliases() const;

private:
    enum class Type : std::uint8_t { Text, Number, Date };
    struct Table {
        const char *name;
        std::vector<const char *> columns[3]; ///< for each type
    };
    struct Source {
        std::string alias;
        std::vector<std::string> columns[3];
    };
    /// Sets the tables of a block for as long as it lives; those around it stay visible.
    class Block;

    static const std::vector<Table> &tables();
    Type anyType() { return Type(below(3)); }

    std::string block(const std::vector<Type> &types, int depth);
    std::string plainBlock(const std::vector<Type> &types, int depth);
    std::string groupedBlock(const std::vector<Type> &types, int depth);
    std::string from(int depth);
    std::string source(int depth);
    std::string column(Type type, std::size_t first = 0);
    std::string expression(Type type, int depth);
    std::string either(Type type, int depth);
    std::string text(int depth);
    std::string number(int depth);
    std::string date(int depth);
    std::string aggregate(Type type, int depth);
    std::string literal(Type type);
    std::string condition(int depth);
    std::string comparison(int depth);

    std::mt19937_64 m_random;
    std::vector<Source> m_sources {};
    int m_aliases = 0;
};
