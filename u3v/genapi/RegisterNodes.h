#pragma once
// Registers: address arithmetic, reading and writing through the cache, and the kinds that decode the bytes.

#include "u3v/genapi/NumberNodes.h"
#include "u3v/genapi/RegisterCache.h"

#include <chrono>

namespace Orvi::GenApi {

class MapState;
class PortNode;

/// Everything that has an address. The number kinds inherit it beside NumberNode, so it is no Node itself.
class RegisterNode {
  public:
    virtual ~RegisterNode() = default;

    std::uint64_t AddressNow(Run &run) { return moving_ ? MovingAddress(run) : address_; }
    std::size_t LengthNow(Run &run);
    void Read(Run &run, std::span<std::byte> data);
    /// @p mask says which bits a verifying write compares; empty means all.
    void Write(Run &run, std::span<const std::byte> data, std::span<const std::byte> mask = {});
    /// Makes the next read ask the camera.
    void ForgetValue(MapState &map);

    /// Asks the camera again after @p milliseconds at the latest, unless @p block is not 0.
    void Poll(std::int64_t milliseconds, Node *block);

    virtual Node &AsNode() = 0;
    const Node &AsNode() const { return const_cast<RegisterNode *>(this)->AsNode(); }

  protected:
    static constexpr std::size_t maxLength = 64u << 20;
    static constexpr std::uint32_t notGiven = ~0u;

    bool TakeRegister(const Property &property);
    /// The length must be given and, when @p limit is not 0, constant and no longer; a node may hold the constant.
    void FinishRegister(Loader &loader, std::size_t limit);
    AccessMode RegisterAccess(Run &run);
    bool CanRead() const { return accessMode_ != AccessMode::WriteOnly; }
    CachingMode RegisterCaching() const { return caching_; }
    bool IsBigEndian() const { return bigEndian_; } ///< the port's swapping included, once finished
    std::size_t ConstantLength() const { return length_; }

  private:
    struct Offset {
        Node *index;
        std::int64_t factor;
        Node *factorNode;
    };

    /// Of a register whose address is not constant.
    struct Moving {
        std::vector<Node *> addresses;
        std::vector<Offset> offsets;
        std::vector<std::uint64_t> used; ///< addresses that it has been read at
        std::uint64_t last = 0;
    };
    struct Polling {
        std::chrono::milliseconds time, lastRead{};
        Node *block;
    };

    static std::uint32_t LengthOf(std::int64_t length)
    {
        return static_cast<std::uint32_t>(std::clamp<std::int64_t>(length, 0, notGiven - 1));
    }
    Moving &AddMoving();
    std::uint64_t MovingAddress(Run &run);
    bool IsAddressKnown(Run &run) const;
    bool IsExpired(const Run &run, std::uint64_t address) const;
    void ReadPort(Run &run, std::uint64_t address, std::span<std::byte> data);
    void CompareWithPort(Run &run, std::uint64_t address, std::span<const std::byte> data,
                         std::span<const std::byte> mask);
    bool HasChanged(MapState &map, std::uint64_t address, std::span<const std::byte> data) const;
    void Remember(MapState &map, std::uint64_t address, std::span<const std::byte> data);
    void RememberPlace(MapState &map, std::uint64_t address, std::span<const std::byte> data);
    void Forget(MapState &map, std::uint64_t address, std::size_t length);

    std::uint64_t address_ = 0;
    std::unique_ptr<Moving> moving_;
    std::unique_ptr<Polling> polling_;
    Node *lengthNode_ = nullptr;
    std::uint32_t length_ = notGiven;
    PortNode *port_ = nullptr;
    RegisterCache::Page *page_ = nullptr; ///< where its value is remembered, when that is always one page
    AccessMode accessMode_ = AccessMode::ReadOnly;
    CachingMode caching_ = CachingMode::WriteThrough;
    bool bigEndian_ : 1 = false;
    bool isRemembered_ : 1 = true;
    bool isInOnePage_ : 1 = false;
};

/// The common part of the register kinds: @p Base is a NumberNode or Node.
template <class Base>
class RegisterKind : public Base, public RegisterNode {
  public:
    using Base::Base;

    Node &AsNode() final { return *this; }
    bool Take(const Property &property) override { return TakeRegister(property) || Base::Take(property); }
    std::optional<CachingMode> OwnCaching() const final { return RegisterCaching(); }

  protected:
    AccessMode ValueAccess(Run &run) final { return RegisterAccess(run); }
};

/// IntReg, MaskedIntReg, StructEntry.
class IntRegNode final : public RegisterKind<NumberNode<std::int64_t>> {
  public:
    using RegisterKind::RegisterKind;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    std::int64_t Value(Run &run) override;
    void SetValue(Run &run, std::int64_t value) override;
    Limits<std::int64_t> ValueLimits(Run &run) override;

  private:
    using Bytes = std::array<std::byte, 8>;
    std::uint64_t Decode(const Bytes &bytes) const;
    Bytes Encode(std::uint64_t raw) const;

    bool signed_ = false;
    static constexpr std::uint8_t noBit = 0xFF, outside = 64;
    static std::uint8_t BitOf(const Property &property);

    std::uint8_t lsb_ = noBit, msb_ = noBit;
    std::uint8_t shift_ = 0, width_ = 64;
};

class FloatRegNode final : public RegisterKind<NumberNode<double>> {
  public:
    using RegisterKind::RegisterKind;
    void Finish(Loader &loader) override;

  protected:
    double Value(Run &run) override;
    void SetValue(Run &run, double value) override;
    Limits<double> ValueLimits(Run &run) override;
};

class StringRegNode final : public RegisterKind<Node> {
  public:
    using RegisterKind::RegisterKind;
    void Finish(Loader &loader) override { FinishRegister(loader, 0); }
    std::string GetText(Run &run) override;
    void SetText(Run &run, std::string_view value) override;
};

/// Register: bytes without a meaning.
class BytesNode final : public RegisterKind<Node> {
  public:
    using RegisterKind::RegisterKind;
    void Finish(Loader &loader) override { FinishRegister(loader, 0); }
};

} // namespace Orvi::GenApi
