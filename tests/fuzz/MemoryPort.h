#pragma once
// A camera's memory for node maps: it repeats every 4 KB, remembers writes, and has places that refuse.

#include "u3v/core/Status.h"
#include "u3v/genapi/Port.h"

#include <cstdint>
#include <vector>

namespace Orvi::Fuzz {

class MemoryPort : public GenApi::Port {
  public:
    static constexpr std::size_t size = 4096;
    static constexpr std::uint64_t refusing = 0xF00, silent = 0xF80; ///< where these parts of each page begin

    MemoryPort() : memory_(size)
    {
        for (std::size_t i = 0; i < size; ++i)
            memory_[i] = static_cast<std::byte>(i / 4 % 4 == 0 ? i % 4 == 0 : i * 37); // every fourth word is 1
    }

    void Read(std::uint64_t address, std::span<std::byte> data) override
    {
        Check(address, data.size());
        for (std::byte &b : data)
            b = memory_[address++ % size];
    }

    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        Check(address, data.size());
        for (const std::byte b : data)
            memory_[address++ % size] = b;
    }

  private:
    static void Check(std::uint64_t address, std::size_t count)
    {
        if (address % size >= silent)
            throw U3v::StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING, "silent");
        if (address % size >= refusing || count > 16 * size)
            throw U3v::StatusError(CAM_API_STS_INVALID_ADDRESS, "no such address");
    }

    std::vector<std::byte> memory_;
};

} // namespace Orvi::Fuzz
