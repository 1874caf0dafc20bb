#pragma once
// A description around a few nodes, over a memory that counts its transactions.

#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/genapi/Say.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

namespace Orvi::GenApi {

class MemoryPort : public Port {
  public:
    void Read(std::uint64_t address, std::span<std::byte> data) override
    {
        ++reads;
        Check(address, data.size());
        std::memcpy(data.data(), bytes.data() + address, data.size());
    }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        ++writes;
        Check(address, data.size());
        for (std::size_t i = 0; i < data.size(); ++i)
            bytes[address + i] = data[i] & keeps;
    }

    template <class T>
    void Put(std::uint64_t address, T value)
    {
        std::memcpy(bytes.data() + address, &value, sizeof value);
    }
    template <class T>
    T Get(std::uint64_t address) const
    {
        T value;
        std::memcpy(&value, bytes.data() + address, sizeof value);
        return value;
    }

    std::vector<std::byte> bytes = std::vector<std::byte>(0x10000);
    CAM_API_STATUS failure = 0;
    std::byte keeps{0xFF};
    int reads = 0, writes = 0;

  private:
    void Check(std::uint64_t address, std::size_t length) const
    {
        if (failure != 0)
            throw U3v::StatusError(failure, "the camera says no");
        if (address > bytes.size() || length > bytes.size() - address)
            throw U3v::StatusError(CAM_API_STS_INVALID_ADDRESS, "no such address");
    }
};

inline std::string Describe(const std::string &nodes)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"Test\" VendorName=\"Orvi\" SchemaMajorVersion=\"1\" "
           "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\">\n" +
           nodes + "\n<Port Name=\"Device\"/></RegisterDescription>\n";
}

/// A register of 4 bytes: element, name, address, and further properties.
inline std::string Reg(const std::string &kind, const std::string &name, int address, const std::string &more = {},
                       int length = 4)
{
    return Say("<", kind, " Name=\"", name, "\"><Address>", std::to_string(address), "</Address><Length>",
               std::to_string(length), "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>", more, "</", kind,
               ">");
}

class TestMap {
  public:
    explicit TestMap(const std::string &nodes, const NodeMap::Options &options = {})
        : map(NodeMap::Load(Describe(nodes), port, options))
    {
    }

    NodeId operator[](std::string_view name) const
    {
        const auto id = map->Find(name);
        if (!id)
            throw std::out_of_range(std::string(name));
        return *id;
    }
    NodeMap *operator->() const { return map.get(); }

    std::int64_t Int(std::string_view name, ReadOptions options = {}) const
    {
        return map->GetInt((*this)[name], options);
    }
    double Float(std::string_view name) const { return map->GetFloat((*this)[name]); }
    void Set(std::string_view name, std::int64_t value, Verify verify = Verify::No)
    {
        map->SetInt((*this)[name], value, verify);
    }
    void SetFloat(std::string_view name, double value) { map->SetFloat((*this)[name], value); }

    MemoryPort port;
    std::unique_ptr<NodeMap> map;
};

/// The text of the Error that f throws, "" when it throws none.
template <class F>
std::string ErrorOf(F &&f)
{
    try {
        f();
    } catch (const Error &error) {
        return error.what();
    }
    return {};
}

inline std::string LoadError(const std::string &nodes)
{
    return ErrorOf([&] { TestMap map(nodes); });
}

} // namespace Orvi::GenApi
