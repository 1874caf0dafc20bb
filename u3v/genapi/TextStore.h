#pragma once
// The texts of a map and the look-up of its nodes by name, without an allocation for each of them.

#include "u3v/genapi/Node.h"

namespace Orvi::GenApi {

/// Keeps equal texts once: many nodes share a description, and most have their name as display name.
class TextStore {
  public:
    std::string_view Keep(std::string_view text);
    /// Nothing more will be kept.
    void Trim() { std::vector<std::string_view>().swap(slots_); }

  private:
    std::string_view Store(std::string_view text);

    std::vector<std::unique_ptr<char[]>> blocks_;
    char *free_ = nullptr;
    std::size_t left_ = 0;
    std::vector<std::string_view> slots_; ///< hashed, at most half full
    std::size_t count_ = 0;
};

class NameIndex {
  public:
    /// The node of that name, or null.
    Node *Find(std::string_view name) const;
    /// Null, or the node that has the name already; it keeps it.
    Node *Add(Node &node);

  private:
    std::vector<Node *> slots_; ///< hashed, at most three quarters full
    std::size_t count_ = 0;
};

} // namespace Orvi::GenApi
