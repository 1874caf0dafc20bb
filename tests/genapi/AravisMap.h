#pragma once
// libaravis's GenICam runtime over a memory, without its headers: the peer of the node map in tests and benchmarks.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct _ArvGcNode;

namespace Orvi::GenApi {

class AravisMap {
  public:
    using Node = _ArvGcNode *;

    /// Throws when the description is no XML. @p cache switches its register cache on, which is off by default.
    AravisMap(const std::string &xml, std::vector<std::byte> &memory, bool cache);
    ~AravisMap();
    AravisMap(const AravisMap &) = delete;
    AravisMap &operator=(const AravisMap &) = delete;

    /// Null when there is none.
    Node Find(const std::string &name) const;
    enum class Kind { Integer, Float, Enumeration, Boolean, String, Command, Other };
    static Kind KindOf(Node node);

    // All of these throw a std::runtime_error with the text of the GError.
    static std::int64_t GetInt(Node node);
    static void SetInt(Node node, std::int64_t value);
    static std::int64_t IntMin(Node node);
    static std::int64_t IntMax(Node node);
    static std::int64_t IntInc(Node node);
    static double GetFloat(Node node);
    static void SetFloat(Node node, double value);
    static double FloatMin(Node node);
    static double FloatMax(Node node);
    static const char *GetEnumText(Node node);
    static std::int64_t GetEnumInt(Node node);
    static void SetEnumText(Node node, const char *value);
    static std::vector<std::string> AvailableEntries(Node node);
    static bool GetBool(Node node);
    static void SetBool(Node node, bool value);
    static std::string GetText(Node node);
    static void SetText(Node node, const std::string &value);
    static void Execute(Node node);
    /// "NI", "NA", "RO", "WO", "RW", or "?" where it does not know.
    static std::string Access(Node node);

    static const char *Version();

  private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

} // namespace Orvi::GenApi
