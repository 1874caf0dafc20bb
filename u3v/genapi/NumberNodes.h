#pragma once
// Nodes with a number: NumberNode turns the one type that a kind works in into both, and enforces its limits; Integer
// and Float are values that the description or another node holds.

#include "u3v/genapi/Node.h"
#include "u3v/genapi/Properties.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvi::GenApi {

// The same verb for both types, by the type.
template <class T>
T GetNumber(Node &node, Run &run)
{
    if constexpr (std::is_same_v<T, double>)
        return node.GetFloat(run);
    else
        return node.GetInt(run);
}

template <class T>
void SetNumber(Node &node, Run &run, T value)
{
    if constexpr (std::is_same_v<T, double>)
        node.SetFloat(run, value);
    else
        node.SetInt(run, value);
}

template <class T>
Limits<T> LimitsOf(Node &node, Run &run)
{
    if constexpr (std::is_same_v<T, double>)
        return node.FloatLimits(run);
    else
        return node.IntLimits(run);
}

template <class T>
constexpr Limits<T> noLimits = {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()};

/// A property that is a constant or the value of another node.
template <class T>
struct Source {
    T constant{};
    Node *node = nullptr;
    bool given = false;

    T Get(Run &run) const { return node ? GetNumber<T>(*node, run) : constant; }
    void Take(T value)
    {
        constant = value;
        given = true;
    }
    void Take(Node *target)
    {
        node = target;
        given = true;
    }
};

/// A node whose value is a T; the other type's operations convert.
template <class T>
class NumberNode : public Node {
  public:
    using Node::Node;

    std::int64_t GetInt(Run &run) final { return ToInt(run, Value(run)); }
    double GetFloat(Run &run) final { return static_cast<double>(Value(run)); }
    void SetInt(Run &run, std::int64_t value) final { Set(run, static_cast<T>(value)); }
    void SetFloat(Run &run, double value) final;
    Limits<std::int64_t> IntLimits(Run &run) final;
    Limits<double> FloatLimits(Run &run) final
    {
        const Limits<T> limits = ValueLimits(run);
        return {static_cast<double>(limits.min), static_cast<double>(limits.max)};
    }
    std::int64_t IntInc(Run &run) final;
    std::optional<double> FloatInc(Run &run) final;

  protected:
    virtual T Value(Run &run) = 0;
    virtual void SetValue(Run &run, T value) = 0;
    virtual Limits<T> ValueLimits(Run &) { return noLimits<T>; }
    virtual std::optional<T> ValueInc(Run &) { return std::nullopt; }
    /// Refuses what is out of range. Kinds that have steps or sets of values, or leave the range to what is below,
    /// override it.
    virtual void Check(Run &run, T value) { CheckRange(run, value, ValueLimits(run)); }

    void CheckRange(const Run &run, T value, Limits<T> limits) const
    {
        if (!(value >= limits.min && value <= limits.max))
            FailRange(run, value, limits);
    }
    void CheckInc(const Run &run, T value, T min, T inc) const;

  private:
    [[noreturn]] void FailRange(const Run &run, T value, Limits<T> limits) const;
    [[noreturn]] void FailInc(const Run &run, T value, T min, T inc, T below) const;
    void Set(Run &run, T value)
    {
        Check(run, value);
        SetValue(run, value);
    }
    std::int64_t ToInt(const Run &run, T value) const
    {
        if constexpr (std::is_same_v<T, double>)
            return RoundToInt(run, *this, value);
        else
            return value;
    }
};

template <class T>
void NumberNode<T>::CheckInc(const Run &run, T value, T min, T inc) const
{
    if (inc <= 0)
        return;
    if constexpr (std::is_same_v<T, double>) {
        const double steps = (value - min) / inc;
        if (std::fabs(steps - std::round(steps)) >= 1e-6)
            FailInc(run, value, min, inc, min + std::floor(steps) * inc);
    } else {
        const std::uint64_t distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(min);
        if (const std::uint64_t rest = distance % static_cast<std::uint64_t>(inc); rest != 0)
            FailInc(run, value, min, inc, static_cast<T>(static_cast<std::uint64_t>(value) - rest));
    }
}

/// Integer and Float.
template <class T>
class ValueNode final : public NumberNode<T> {
  public:
    using NumberNode<T>::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;
    /// Its value, when the description gives it and no other node.
    std::optional<T> Constant() const
    {
        return value_.given && !value_.node && !(rare_ && rare_->index) ? std::optional(value_.constant) : std::nullopt;
    }

  protected:
    T Value(Run &run) override { return Current(run).Get(run); }
    void SetValue(Run &run, T value) override;
    Limits<T> ValueLimits(Run &run) override;
    std::optional<T> ValueInc(Run &run) override;
    void Check(Run &run, T value) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    struct Indexed {
        std::int64_t index;
        Source<T> source;
    };

    /// What few nodes have.
    struct Rare {
        Node *index = nullptr;
        std::vector<Indexed> indexed;
        Source<T> otherwise;
        std::vector<Node *> copies;
        std::vector<T> valid;     ///< the values that alone may be set, if the description lists them
        Node *validSet = nullptr; ///< or who does
    };

    bool TakeRare(const Property &property);
    bool HasValidSet() const { return rare_ && (rare_->validSet || !rare_->valid.empty()); }
    std::vector<T> ValidValues(Run &run);
    Limits<T> LimitsOfSet(Run &run, Limits<T> limits);
    void SetCopies(Run &run, T value);
    void CheckValid(Run &run, T value);
    Source<T> &Current(Run &run) { return rare_ && rare_->index ? Chosen(run) : value_; }
    Source<T> &Chosen(Run &run);
    Node *Below(Run &run) { return Current(run).node; }

    Source<T> value_, min_, max_, inc_;
    std::unique_ptr<Rare> rare_;
};

extern template class NumberNode<std::int64_t>;
extern template class NumberNode<double>;
extern template class ValueNode<std::int64_t>;
extern template class ValueNode<double>;

} // namespace Orvi::GenApi
