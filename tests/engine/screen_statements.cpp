#include "tests/engine/screen_statements.h"

#include "tests/engine/support.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace engine::test {

std::vector<ScreenStatement> screenStatements()
{
    constexpr std::string_view opened = "= «";
    constexpr std::string_view closed = "»";
    std::set<std::filesystem::path> files;
    for (const auto &file : std::filesystem::directory_iterator(KELVARA_SOURCE_DIR "/tests/cases"))
        files.insert(file.path());
    std::set<std::string> seen;
    std::vector<ScreenStatement> statements;
    for (const auto &file : files) {
        std::istringstream text(fileText("tests/cases/" + file.filename().string()));
        bool isNew = false;
        for (std::string line; std::getline(text, line);) {
            if (line.starts_with("x ") && isNew)
                statements.back().isRefused = true;
            if (!line.starts_with(opened))
                continue;
            const std::string sql = line.substr(opened.size(), line.size() - opened.size() - closed.size());
            isNew = seen.insert(sql).second;
            if (isNew)
                statements.push_back({ file.stem().string(), sql });
        }
    }
    return statements;
}

} // namespace engine::test
