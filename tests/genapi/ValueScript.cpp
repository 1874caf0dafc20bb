#include "ValueScript.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace Orvi::GenApi {

const std::vector<std::string> describedCameras = {"LineScan", "Thermal", "Inspection", "Modular", "Studio", "Wide"};

namespace {

std::string ReadFile(const std::string &name)
{
    for (const char *folder : {DESCRIPTIONS, GENERATED_DESCRIPTIONS}) {
        std::ifstream file(std::string(folder) + "/" + name, std::ios::binary);
        if (file)
            return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    throw std::runtime_error("there is no " + name);
}

std::vector<std::byte> BytesOfHex(const std::string &hex)
{
    std::vector<std::byte> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::byte>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string HexOfBytes(std::span<const std::byte> bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const std::byte b : bytes) {
        text += digits[std::to_integer<unsigned>(b) >> 4];
        text += digits[std::to_integer<unsigned>(b) & 0xF];
    }
    return text;
}

template <class T>
std::vector<std::byte> BytesOfNumber(const std::string &text)
{
    const T value = static_cast<T>(std::strtod(text.c_str(), nullptr));
    std::vector<std::byte> bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

/// One line; "" when it was kept, else what was got instead.
class Line {
  public:
    Line(const std::string &text, Subject &subject) : subject_(subject)
    {
        std::istringstream words(text);
        words >> verb_ >> first_ >> std::ws;
        std::getline(words, rest_);
    }

    bool Asks() const { return !verb_.starts_with("put") && verb_ != "chunk" && verb_ != "event" && verb_ != "fresh"; }

    std::string Run()
    {
        if (verb_ == "put")
            Put(BytesOfHex(rest_));
        else if (verb_ == "putf")
            Put(BytesOfNumber<float>(rest_));
        else if (verb_ == "putd")
            Put(BytesOfNumber<double>(rest_));
        else if (verb_ == "mem")
            return Compare(HexOfBytes(std::span(subject_.Memory()).subspan(Number(), rest_.size() / 2)));
        else if (verb_ == "set")
            subject_.Set(first_, rest_);
        else if (verb_ == "run")
            subject_.Execute(first_);
        else if (verb_ == "refuse")
            return Refuse();
        else if (verb_ == "chunk" || verb_ == "event")
            subject_.Deliver(verb_, Number(), BytesOfHex(rest_));
        else if (verb_ == "fresh")
            subject_.Forget();
        else
            return Compare(subject_.Ask(verb_, first_));
        return {};
    }

  private:
    std::uint64_t Number() const { return std::stoull(first_, nullptr, 0); }

    void Put(const std::vector<std::byte> &bytes)
    {
        std::memcpy(&subject_.Memory().at(Number() + bytes.size()) - bytes.size(), bytes.data(), bytes.size());
    }

    std::string Compare(const std::string &got) const
    {
        if (got == rest_)
            return {};
        if (verb_ == "float" || verb_ == "fmin" || verb_ == "fmax") {
            const double a = std::strtod(got.c_str(), nullptr), b = std::strtod(rest_.c_str(), nullptr);
            if (std::fabs(a - b) <= 1e-9 * std::fabs(b))
                return {};
        }
        return got.empty() ? "nothing" : got;
    }

    std::string Refuse()
    {
        const std::size_t end = rest_.find(" ; ");
        const std::string value = rest_.substr(0, end), why = rest_.substr(end + 3);
        try {
            subject_.Set(first_, value);
        } catch (const std::exception &error) {
            const std::string text = error.what();
            return text.find(why) == text.npos ? text : std::string();
        }
        return "accepted";
    }

    Subject &subject_;
    std::string verb_, first_, rest_;
};

} // namespace

std::vector<Deviation> RunScript(const std::string &script, Subject &subject, std::size_t &checks)
{
    std::vector<Deviation> deviations;
    std::istringstream lines(script);
    std::string text;
    for (std::size_t number = 1; std::getline(lines, text); ++number) {
        if (text.empty() || text.front() == '#')
            continue;
        Line line(text, subject);
        checks += line.Asks() ? 1 : 0;
        std::string got;
        try {
            got = line.Run();
        } catch (const std::exception &error) {
            got = std::string("error: ") + error.what();
        }
        if (!got.empty())
            deviations.push_back({number, text, got});
    }
    return deviations;
}

std::string ReadDescription(const std::string &name) { return ReadFile(name + ".xml"); }

std::string ReadScript(const std::string &name) { return ReadFile(name + ".values"); }

std::string NumberText(double value)
{
    char digits[40];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    return {digits, result.ptr};
}

} // namespace Orvi::GenApi
