#pragma once
// What is wrong with a description file, and where.

#include <string>
#include <utility>
#include <vector>

namespace Orvi::Vcam {

/// A place in a text, counted from 1; 0 is the text as a whole.
struct Place {
    unsigned line = 0, column = 0;
    bool operator==(const Place &) const = default;
    std::pair<unsigned, unsigned> Order() const { return {line, column}; }
};

struct Mistake {
    Place place;
    std::string text; ///< names the key, what is wrong with it, and what is allowed
    bool operator==(const Mistake &) const = default;
};
using Mistakes = std::vector<Mistake>;

} // namespace Orvi::Vcam
