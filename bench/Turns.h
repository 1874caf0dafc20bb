#pragma once
// Compares pieces of work by timing them in turns. Two figures taken one after the other, seconds apart, differ by what
// else the machine did meanwhile; batches of some microseconds that lie side by side are disturbed alike, and the few
// that are not do not move a median.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace Orvi::Bench {

class Turns {
  public:
    /// Nanoseconds per call of each piece in one round, in the order of Add().
    using Times = std::vector<double>;

    /// @param calls in a batch: enough that reading the clock does not count, too few to be interrupted often
    explicit Turns(std::size_t calls) : calls_(calls) {}

    /// @param call    what is timed
    /// @param prepare runs before each of its batches, untimed
    template <class Call>
    void Add(Call call, std::function<void()> prepare = {})
    {
        pieces_.push_back({[call = std::move(call)](std::size_t calls) mutable {
                               while (calls-- != 0)
                                   call();
                           },
                           std::move(prepare)});
    }

    /// One batch of each piece. The order alternates: each piece comes after each other one as often.
    void Round()
    {
        Times &times = rounds_.emplace_back(pieces_.size());
        const bool isForward = rounds_.size() % 2 == 0;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            const std::size_t piece = isForward ? i : pieces_.size() - 1 - i;
            times[piece] = Time(pieces_[piece]);
        }
    }

    /// The median over all rounds of what figure(times) makes of a round.
    template <class Figure>
    double Median(const Figure &figure) const
    {
        std::vector<double> figures;
        for (const Times &times : rounds_)
            figures.push_back(figure(times));
        const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
        std::nth_element(figures.begin(), middle, figures.end());
        return *middle;
    }
    double MedianTime(std::size_t piece) const
    {
        return Median([piece](const Times &times) { return times[piece]; });
    }

  private:
    struct Piece {
        std::function<void(std::size_t)> run;
        std::function<void()> prepare;
    };

    double Time(const Piece &piece) const
    {
        using Clock = std::chrono::steady_clock;
        if (piece.prepare)
            piece.prepare();
        piece.run(calls_ / 4 + 1); // brings back what the others have pushed out of the caches
        const Clock::time_point start = Clock::now();
        piece.run(calls_);
        return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / static_cast<double>(calls_);
    }

    const std::size_t calls_;
    std::vector<Piece> pieces_;
    std::vector<Times> rounds_;
};

} // namespace Orvi::Bench
