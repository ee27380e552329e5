// Drives a fuzz target without a fuzzing engine: first the corpus as it is, then mutations of it, the same ones every time.
//
// Usage: TARGET ROUNDS CORPUS...
// CORPUS is a folder, whose files are the seeds, or one file, whose paragraphs are, without lines that begin with two dashes.
// When the environment names a KELVARA_FUZZ_INPUT, each input is left in that file before the target gets it, so that the one
// that broke it is at hand.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

constexpr std::size_t largestInput = 1024 * 1024;

std::string contentOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

void addParagraphs(const std::filesystem::path &path, std::vector<std::string> &seeds)
{
    std::ifstream file(path);
    std::string paragraph;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() && !paragraph.empty())
            seeds.push_back(std::exchange(paragraph, {}));
        else if (!line.starts_with("--"))
            paragraph += (paragraph.empty() ? "" : "\n") + line;
    }
    if (!paragraph.empty())
        seeds.push_back(paragraph);
}

void addSeeds(const std::filesystem::path &corpus, std::vector<std::string> &seeds)
{
    if (!std::filesystem::is_directory(corpus))
        return addParagraphs(corpus, seeds);
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(corpus)) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const auto &file : files)
        seeds.push_back(contentOf(file));
}

/// Changes seeds at random places, mostly a little.
class Mutator {
public:
    explicit Mutator(const std::vector<std::string> &seeds)
        : m_seeds(seeds)
    {
    }

    std::string next()
    {
        std::string input = anySeed();
        for (std::size_t changes = 1 + below(4); changes > 0; --changes)
            change(input);
        input.resize(std::min(input.size(), largestInput));
        return input;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : std::size_t(m_random() % limit); }
    const std::string &anySeed() { return m_seeds[below(m_seeds.size())]; }

    void change(std::string &input)
    {
        const std::size_t place = below(input.size());
        const std::size_t some = std::min(input.size() - place, 1 + below(below(2) == 0 ? 8 : 200));
        switch (below(8)) {
        case 0:
            if (!input.empty())
                input[place] = char(std::uint8_t(input[place]) ^ (1u << below(8)));
            return;
        case 1:
            return setNumber(input, place);
        case 2:
            input.erase(place, some);
            return;
        case 3:
            input.insert(below(input.size() + 1), input.substr(place, some));
            return;
        case 4:
            input.insert(place, 1 + below(8), char(m_random()));
            return;
        case 5:
            input.resize(place);
            return;
        case 6:
            return exchange(input, place, some);
        default:
            return splice(input, place, some);
        }
    }

    /// A number that is at the edge of something, where one of its size may stand.
    void setNumber(std::string &input, std::size_t place)
    {
        constexpr std::int64_t edges[] = { 0, 1, -1, 2, 7, 8, 63, 64, 127, 255, 256, 32767, 65535, 65536, 0x7FFFFFFF, 0x80000000,
            0xFFFFFFFF, std::int64_t(1) << 40, INT64_MAX, INT64_MIN };
        const std::int64_t value = edges[below(std::size(edges))];
        const std::size_t size = std::size_t(1) << below(4);
        place -= place % size;
        for (std::size_t position = 0; position < size && place + position < input.size(); ++position)
            input[place + position] = char(value >> (8 * position));
    }

    void exchange(std::string &input, std::size_t place, std::size_t size)
    {
        const std::size_t other = below(input.size() - size + 1);
        for (std::size_t position = 0; position < size; ++position)
            std::swap(input[place + position], input[other + position]);
    }

    /// A part of another seed.
    void splice(std::string &input, std::size_t place, std::size_t size)
    {
        const std::string &other = anySeed();
        const std::size_t from = below(other.size());
        input.replace(place, size, other, from, 1 + below(200));
    }

    const std::vector<std::string> &m_seeds;
    std::mt19937_64 m_random { 20240305 };
};

void run(const std::string &input, const char *file)
{
    if (file)
        std::ofstream(file, std::ios::binary) << input;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> seeds;
    for (int corpus = 2; corpus < argc; ++corpus)
        addSeeds(argv[corpus], seeds);
    if (seeds.empty()) {
        std::fprintf(stderr, "Usage: %s ROUNDS CORPUS...\n", argv[0]);
        return 2;
    }
    const char *const file = std::getenv("KELVARA_FUZZ_INPUT");
    for (const std::string &seed : seeds)
        run(seed, file);
    Mutator mutator(seeds);
    for (long rounds = std::atol(argv[1]); rounds > 0; --rounds)
        run(mutator.next(), file);
    return 0;
}
