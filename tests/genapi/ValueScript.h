#pragma once
// What a description's nodes must give, written as a script of lines, run over any runtime:
//
//   put ADDRESS HEX              bytes of the camera's memory; putf, putd: a little-endian float, double
//   mem ADDRESS HEX              what the memory must hold
//   int|float|bool|enum|text NODE VALUE
//   min|max|inc|fmin|fmax NODE VALUE
//   entries NODE A,B,C           those that are implemented and available
//   access NODE RW               NI, NA, WO, RO, RW
//   set NODE VALUE               by the node's own type
//   refuse NODE VALUE ; WHY      set fails with WHY in its text
//   run NODE                     executes a command
//   chunk ID HEX, event ID HEX   data that arrive
//   fresh                        nothing is remembered of the camera
//
// Floats are equal when they differ by less than 1e-9 of themselves. Lines that begin with # are remarks.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Orvi::GenApi {

/// A runtime that a script is run over. What it refuses it throws as a std::exception.
class Subject {
  public:
    virtual ~Subject() = default;

    /// The memory that the runtime reads and writes.
    virtual std::vector<std::byte> &Memory() = 0;
    /// The answer to a verb that asks: "int", "fmin", "entries", "access" ...
    virtual std::string Ask(const std::string &verb, const std::string &node) = 0;
    virtual void Set(const std::string &node, const std::string &value) = 0;
    virtual void Execute(const std::string &node) = 0;
    virtual void Deliver(const std::string &kind, std::uint64_t id, std::span<const std::byte> data) = 0;
    virtual void Forget() = 0;
};

/// A line that the runtime did not keep.
struct Deviation {
    std::size_t number;
    std::string line, got;
};

/// Runs all lines; @p checks counts those that ask.
std::vector<Deviation> RunScript(const std::string &script, Subject &subject, std::size_t &checks);

/// A description of this folder or of the generated ones, by its name, and the script beside it.
std::string ReadDescription(const std::string &name);
std::string ReadScript(const std::string &name);

/// All descriptions that have a script.
extern const std::vector<std::string> describedCameras;

/// The shortest text that reads back as @p value.
std::string NumberText(double value);

} // namespace Orvi::GenApi
