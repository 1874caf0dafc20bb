#pragma once
// The files in which the kernel and udev tell of themselves, below a root that tests may put elsewhere.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

class Machine {
  public:
    explicit Machine(std::filesystem::path root) : root_(std::move(root)) {}

    /// The path as this program reaches it; `path` is as users know it, e.g. "/dev/bus/usb".
    std::filesystem::path At(const std::string &path) const { return root_ / path.substr(1); }
    bool Exists(const std::string &path) const;
    /// Nothing when it cannot be read.
    std::optional<std::string> Text(const std::string &path) const;
    /// As Text(), without the end of the line; empty when it cannot be read.
    std::string Attribute(const std::string &path) const;
    /// Names in a folder, sorted; none when it cannot be read.
    std::vector<std::string> Names(const std::string &folder) const;

  private:
    std::filesystem::path root_;
};

} // namespace Orvi::Tool
