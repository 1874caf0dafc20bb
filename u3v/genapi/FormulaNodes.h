#pragma once
// Nodes that calculate: SwissKnife and IntSwissKnife read, Converter and IntConverter stand between a user's value and
// another node's.

#include "u3v/genapi/FormulaPart.h"

namespace Orvi::GenApi {

template <class T>
constexpr Arithmetic arithmeticOf = std::is_same_v<T, double> ? Arithmetic::Float : Arithmetic::Integer;

template <class T>
class SwissKnifeNode final : public NumberNode<T> {
  public:
    using NumberNode<T>::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    T Value(Run &run) override;
    void SetValue(Run &run, T value) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    FormulaPart part_;
    Formula formula_;
};

template <class T>
class ConverterNode final : public NumberNode<T> {
  public:
    using NumberNode<T>::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    T Value(Run &run) override;
    void SetValue(Run &run, T value) override;
    Limits<T> ValueLimits(Run &run) override;
    std::optional<T> ValueInc(Run &run) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    enum class Slope { Increasing, Decreasing, Varying, Automatic };

    T Convert(Run &run, const Formula &formula, T argument);
    std::optional<T> Limit(Run &run, T raw);

    FormulaPart part_;
    Formula to_, from_;
    Node *value_ = nullptr;
    Slope slope_ = Slope::Automatic;
    bool linear_ = false;
};

extern template class SwissKnifeNode<std::int64_t>;
extern template class SwissKnifeNode<double>;
extern template class ConverterNode<std::int64_t>;
extern template class ConverterNode<double>;

} // namespace Orvi::GenApi
