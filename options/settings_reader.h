#pragma once

#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace options {

/// what() names the file, the line and the key, in Chinese, and says what to write.
class SettingsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Thrown by whoever takes a value: says what it should be.
struct Unfit {
    std::string wanted;
};
/// Likewise, but the value must not be shown.
struct Secret {
    std::string wanted;
};

/// The parts of a value between commas, without empty ones.
std::vector<std::string> listOf(std::string_view text);

/// The form of all files of settings: lines of "key = value"; lines that begin with # say nothing. What a key means is for whoever
/// derives from this.
class SettingsReader {
public:
    virtual ~SettingsReader() = default;

protected:
    /// `name` is the file's, for the messages.
    explicit SettingsReader(std::string name);
    SettingsReader(const SettingsReader &) = delete;

    /// Reads all lines. Throws SettingsError.
    void readLines(std::string_view text);
    /// Takes a line of "[section]".
    virtual void beginSection(std::string_view line);
    /// Takes a line of another form; false: it has none.
    virtual bool takeOther(std::string_view line);
    /// Takes a value that is not empty; false: there is no such key. May throw Unfit or Secret.
    virtual bool take(std::string_view key, std::string_view value) = 0;
    /// Whether a key may stand more than once.
    virtual bool mayRepeat(std::string_view) const { return false; }
    /// What is wrong with a key that was not taken, "不存在" say.
    virtual std::string_view unknown() const { return "不存在"; }
    /// The forms that a line may have.
    virtual std::string_view forms() const { return "“键 = 值”"; }

    /// From here on a key may be written again.
    void forgetKeys() { m_keys.clear(); }
    /// The line at hand: "配置文件 x 第 3 行".
    std::string place() const;
    [[noreturn]] void fail(const std::string &reason) const;

private:
    void readLine(std::string_view line);
    void setKey(std::string_view key, std::string_view value);

    const std::string m_name;
    int m_line = 0;
    std::set<std::string, std::less<>> m_keys {};
};

} // namespace options
