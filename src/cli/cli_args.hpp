// A small argument reader for zevran-cli: positional words and "--name value" options.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::cli {

// A command line that does not fit the command's usage (exit status 2).
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Arguments {
public:
    // `valued` names the options that take a value, `flags` those that do not.
    Arguments(const std::vector<std::string>& words, const std::set<std::string>& valued,
              const std::set<std::string>& flags);
    // The same, with options in `repeatable` given any number of times (see values()).
    Arguments(const std::vector<std::string>& words, const std::set<std::string>& valued,
              const std::set<std::string>& flags, const std::set<std::string>& repeatable);

    const std::vector<std::string>& positional() const { return m_positional; }
    std::optional<std::string> value(const std::string& name) const;
    // Every value of a repeatable option, in the order given.
    std::vector<std::string> values(const std::string& name) const;
    bool has(const std::string& name) const;
    void expectPositional(std::size_t count, const std::string& usage) const;

private:
    std::vector<std::string> m_positional;
    std::map<std::string, std::string> m_values;
    std::map<std::string, std::vector<std::string>> m_repeated;
    std::set<std::string> m_flags;
};

// A row number or count typed in decimal digits: "001" and "1" alike.
long numberArgument(const std::string& text, const std::string& what);

// A comma-separated list of such numbers: "001,4".
std::set<long> numberListArgument(const std::string& list, const std::string& what);

}  // namespace zevran::cli
