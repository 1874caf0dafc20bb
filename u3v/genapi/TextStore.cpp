#include "u3v/genapi/TextStore.h"

#include <algorithm>
#include <functional>

namespace Orvi::GenApi {

namespace {

/// The place of a text among 2^n slots: the first that is free or that @p holds says to have it.
template <class Slot, class Holds>
std::size_t PlaceOf(const std::vector<Slot> &slots, std::string_view text, Holds holds)
{
    std::size_t place = std::hash<std::string_view>()(text) & (slots.size() - 1);
    while (slots[place] != Slot() && !holds(slots[place]))
        place = (place + 1) & (slots.size() - 1);
    return place;
}

/// Twice as many slots, everything at its new place.
template <class Slot, class TextOf>
void Grow(std::vector<Slot> &slots, TextOf textOf)
{
    constexpr std::size_t first = 256;
    std::vector<Slot> old(std::max(first, 2 * slots.size()));
    old.swap(slots);
    for (const Slot &slot : old)
        if (slot != Slot())
            slots[PlaceOf(slots, textOf(slot), [](const Slot &) { return false; })] = slot;
}

} // namespace

std::string_view TextStore::Keep(std::string_view text)
{
    if (text.empty())
        return {};
    if (2 * count_ >= slots_.size())
        Grow(slots_, [](std::string_view slot) { return slot; });
    std::string_view &slot = slots_[PlaceOf(slots_, text, [&](std::string_view kept) { return kept == text; })];
    if (slot.empty()) {
        slot = Store(text);
        ++count_;
    }
    return slot;
}

std::string_view TextStore::Store(std::string_view text)
{
    constexpr std::size_t blockSize = 4096;
    if (text.size() > left_) {
        const std::size_t size = std::max(blockSize, text.size());
        free_ = blocks_.emplace_back(new char[size]).get();
        left_ = size;
    }
    const std::string_view kept(free_, text.size());
    std::copy(text.begin(), text.end(), free_);
    free_ += text.size();
    left_ -= text.size();
    return kept;
}

Node *NameIndex::Find(std::string_view name) const
{
    if (slots_.empty())
        return nullptr;
    return slots_[PlaceOf(slots_, name, [&](const Node *node) { return node->Name() == name; })];
}

Node *NameIndex::Add(Node &node)
{
    if (4 * count_ >= 3 * slots_.size())
        Grow(slots_, [](const Node *slot) { return slot->Name(); });
    Node *&slot = slots_[PlaceOf(slots_, node.Name(), [&](const Node *other) { return other->Name() == node.Name(); })];
    if (slot != nullptr)
        return slot;
    slot = &node;
    ++count_;
    return nullptr;
}

} // namespace Orvi::GenApi
