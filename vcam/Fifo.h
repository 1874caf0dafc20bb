#pragma once
// A queue of pointers that allocates only while it grows: std::deque allocates again and again as it moves along.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Orvi::Vcam {

template <class T>
class Fifo {
  public:
    bool IsEmpty() const { return count_ == 0; }
    T *Front() const { return items_[first_]; }

    void PushBack(T *item)
    {
        Reserve();
        items_[At(count_++)] = item;
    }
    void PushFront(T *item)
    {
        Reserve();
        first_ = At(items_.size() - 1);
        ++count_;
        items_[first_] = item;
    }
    T *PopFront()
    {
        T *item = items_[first_];
        first_ = At(1);
        --count_;
        return item;
    }
    /// Takes an item out, wherever it stands; false when it is not there.
    bool Remove(const T *item)
    {
        std::size_t found = 0;
        while (found < count_ && items_[At(found)] != item) {
            ++found;
        }
        if (found == count_) {
            return false;
        }
        for (; found + 1 < count_; ++found) {
            items_[At(found)] = items_[At(found + 1)];
        }
        --count_;
        return true;
    }

  private:
    std::size_t At(std::size_t index) const { return (first_ + index) % items_.size(); }
    void Reserve()
    {
        if (count_ < items_.size()) {
            return;
        }
        std::rotate(items_.begin(), items_.begin() + static_cast<std::ptrdiff_t>(first_), items_.end());
        first_ = 0;
        items_.resize(std::max<std::size_t>(16, 2 * count_));
    }

    std::vector<T *> items_;
    std::size_t first_ = 0, count_ = 0;
};

} // namespace Orvi::Vcam
