#include "u3v/parameters/ParameterFile.h"

#include "u3v/genapi/Error.h"
#include "u3v/genapi/Say.h"

namespace Orvi::U3v {
namespace {

using GenApi::Say;

constexpr std::string_view mark = "OrviParameters ", version = "1";

std::string_view Trimmed(std::string_view text)
{
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The text up to the separator, which is taken away too; all of it when there is none.
std::string_view TakeUpTo(std::string_view &text, char separator)
{
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

class Parser {
  public:
    Parser(std::string_view text, const std::string &fileName) : rest_(text), fileName_(fileName) {}

    ParameterFile Parse()
    {
        ParameterFile file;
        file.model = Head(NextLine());
        while (!rest_.empty())
            if (const std::string_view line = NextLine(); !line.empty() && line.front() != '#')
                file.parameters.push_back(Entry(line));
        return file;
    }

  private:
    std::string_view NextLine()
    {
        ++line_;
        return Trimmed(TakeUpTo(rest_, '\n'));
    }

    std::string Head(std::string_view line) const
    {
        if (!line.starts_with(mark))
            Fail("this is no parameter file: its first line does not begin with OrviParameters");
        line.remove_prefix(mark.size());
        if (const std::string_view found = TakeUpTo(line, ' '); found != version)
            Fail(Say("format version ", found, ", only ", version, " is known"));
        return std::string(Trimmed(line));
    }

    Parameter Entry(std::string_view line) const
    {
        Parameter parameter;
        parameter.line = line_;
        const std::size_t nameEnd = line.find_first_of("[=");
        if (nameEnd == std::string_view::npos)
            Fail(Say("no '=' in \"", line, "\""));
        parameter.feature = Name(line.substr(0, nameEnd));
        line.remove_prefix(nameEnd);
        if (line.front() == '[') {
            const std::size_t end = line.find(']');
            if (end == std::string_view::npos)
                Fail("no ']' behind '['");
            parameter.selectors = Selectors(line.substr(1, end - 1));
            line = Trimmed(line.substr(end + 1));
        }
        if (line.empty() || line.front() != '=')
            Fail("no '=' behind the feature's name");
        parameter.value = std::string(Trimmed(line.substr(1)));
        if (parameter.value.empty())
            Fail("no value behind '='");
        return parameter;
    }

    std::vector<std::pair<std::string, std::string>> Selectors(std::string_view list) const
    {
        std::vector<std::pair<std::string, std::string>> selectors;
        do {
            std::string_view value = TakeUpTo(list, ',');
            const std::string_view name = TakeUpTo(value, '=');
            selectors.emplace_back(Name(name), Name(value));
        } while (!list.empty());
        return selectors;
    }

    std::string Name(std::string_view text) const
    {
        text = Trimmed(text);
        if (text.empty() || text.find_first_of(" \t\"") != std::string_view::npos)
            Fail(Say("'", text, "' is no name"));
        return std::string(text);
    }

    [[noreturn]] void Fail(const std::string &why) const { FailAtLine(fileName_, line_, why); }

    std::string_view rest_;
    const std::string &fileName_;
    std::size_t line_ = 0;
};

} // namespace

std::string NameOf(const Parameter &parameter)
{
    std::string name = parameter.feature;
    for (const auto &[selector, value] : parameter.selectors)
        name += Say(&selector == &parameter.selectors.front().first ? "[" : ",", selector, "=", value);
    return parameter.selectors.empty() ? name : Say(name, "]");
}

std::string FormatParameters(const ParameterFile &file, const std::vector<std::string> &comments)
{
    std::string text = Say(mark, version, " ", file.model, "\n");
    for (const std::string &comment : comments)
        text += Say("# ", comment, "\n");
    for (const Parameter &parameter : file.parameters)
        text += Say(NameOf(parameter), "=", parameter.value, "\n");
    return text;
}

ParameterFile ParseParameters(std::string_view text, const std::string &fileName)
{
    return Parser(text, fileName).Parse();
}

void FailAtLine(const std::string &fileName, std::size_t line, const std::string &why)
{
    throw GenApi::Error(Say(fileName, ", line ", std::to_string(line), ": ", why));
}

} // namespace Orvi::U3v
