#include "cli_args.hpp"

#include <algorithm>
#include <sstream>

namespace zevran::cli {

Arguments::Arguments(const std::vector<std::string>& words, const std::set<std::string>& valued,
                     const std::set<std::string>& flags)
    : Arguments(words, valued, flags, {})
{
}

Arguments::Arguments(const std::vector<std::string>& words, const std::set<std::string>& valued,
                     const std::set<std::string>& flags, const std::set<std::string>& repeatable)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (repeatable.count(word)) {
            if (i + 1 >= words.size()) throw UsageError(word + " needs a value");
            m_repeated[word].push_back(words[++i]);
        } else if (valued.count(word)) {
            if (i + 1 >= words.size()) throw UsageError(word + " needs a value");
            if (m_values.count(word)) throw UsageError(word + " is given twice");
            m_values[word] = words[++i];
        } else if (flags.count(word)) {
            m_flags.insert(word);
        } else if (word.size() > 1 && word[0] == '-') {
            throw UsageError("unknown option " + word);
        } else {
            m_positional.push_back(word);
        }
    }
}

std::optional<std::string> Arguments::value(const std::string& name) const
{
    auto it = m_values.find(name);
    if (it == m_values.end()) return std::nullopt;
    return it->second;
}

std::vector<std::string> Arguments::values(const std::string& name) const
{
    const auto it = m_repeated.find(name);
    return it == m_repeated.end() ? std::vector<std::string>{} : it->second;
}

bool Arguments::has(const std::string& name) const
{
    return m_flags.count(name) > 0 || m_values.count(name) > 0 || m_repeated.count(name) > 0;
}

void Arguments::expectPositional(std::size_t count, const std::string& usage) const
{
    if (m_positional.size() != count) throw UsageError("usage: zevran-cli " + usage);
}

long numberArgument(const std::string& text, const std::string& what)
{
    if (text.empty() || text.size() > 9 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        throw UsageError(what + " \"" + text + "\" is not a number");
    return std::stol(text);
}

std::set<long> numberListArgument(const std::string& list, const std::string& what)
{
    std::set<long> numbers;
    std::stringstream parts(list);
    for (std::string part; std::getline(parts, part, ',');) numbers.insert(numberArgument(part, what));
    if (numbers.empty()) throw UsageError(what + " names no row");
    return numbers;
}

}  // namespace zevran::cli
