#include "AravisMap.h"

#include <arv.h>

#include <cstring>
#include <stdexcept>

// A device over memory, in the way of GObject.

struct OrviMemoryDevice {
    ArvDevice parent;
    std::vector<std::byte> *memory;
};

struct OrviMemoryDeviceClass {
    ArvDeviceClass parent;
};

namespace {

bool Reach(ArvDevice *device, guint64 address, guint32 size, GError **error, std::byte **bytes)
{
    auto &memory = *reinterpret_cast<OrviMemoryDevice *>(device)->memory;
    if (address > memory.size() || size > memory.size() - address) {
        g_set_error_literal(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TRANSFER_ERROR, "no such address");
        return false;
    }
    *bytes = memory.data() + address;
    return true;
}

gboolean ReadMemory(ArvDevice *device, guint64 address, guint32 size, void *buffer, GError **error)
{
    std::byte *bytes = nullptr;
    const bool reached = Reach(device, address, size, error, &bytes);
    if (reached)
        std::memcpy(buffer, bytes, size);
    return reached;
}

gboolean WriteMemory(ArvDevice *device, guint64 address, guint32 size, void *buffer, GError **error)
{
    std::byte *bytes = nullptr;
    const bool reached = Reach(device, address, size, error, &bytes);
    if (reached)
        std::memcpy(bytes, buffer, size);
    return reached;
}

void InitClass(void *klass, void *)
{
    auto *const device = static_cast<ArvDeviceClass *>(klass);
    device->read_memory = ReadMemory;
    device->write_memory = WriteMemory;
}

GType DeviceType()
{
    static const GType type = [] {
        GTypeInfo info{};
        info.class_size = sizeof(OrviMemoryDeviceClass);
        info.class_init = InitClass;
        info.instance_size = sizeof(OrviMemoryDevice);
        return g_type_register_static(ARV_TYPE_DEVICE, "OrviMemoryDevice", &info, static_cast<GTypeFlags>(0));
    }();
    return type;
}

/// Throws what a call has reported.
class Report {
  public:
    GError **operator&() { return &error_; }
    void Check()
    {
        if (error_ == nullptr)
            return;
        const std::string text = error_->message;
        g_clear_error(&error_);
        throw std::runtime_error(text);
    }

  private:
    GError *error_ = nullptr;
};

/// Calls f(node, arguments..., &error).
template <class F, class Object, class... Arguments>
auto Checked(F f, Object *object, Arguments... arguments)
{
    Report report;
    if constexpr (std::is_void_v<decltype(f(object, arguments..., nullptr))>) {
        f(object, arguments..., &report);
        report.Check();
    } else {
        const auto result = f(object, arguments..., &report);
        report.Check();
        return result;
    }
}

template <class T>
T *As(_ArvGcNode *node)
{
    return reinterpret_cast<T *>(node);
}

} // namespace

namespace Orvi::GenApi {

struct AravisMap::Objects {
    ArvDevice *device = nullptr;
    ArvGc *gc = nullptr;
};

AravisMap::AravisMap(const std::string &xml, std::vector<std::byte> &memory, bool cache)
    : objects_(std::make_unique<Objects>())
{
    auto *const device = static_cast<OrviMemoryDevice *>(g_object_new(DeviceType(), nullptr));
    device->memory = &memory;
    objects_->device = &device->parent;
    objects_->gc = arv_gc_new(objects_->device, xml.data(), xml.size());
    if (objects_->gc == nullptr) {
        g_object_unref(objects_->device);
        throw std::runtime_error("libaravis does not take the description");
    }
    arv_gc_set_register_cache_policy(objects_->gc,
                                     cache ? ARV_REGISTER_CACHE_POLICY_ENABLE : ARV_REGISTER_CACHE_POLICY_DISABLE);
    arv_gc_set_range_check_policy(objects_->gc, ARV_RANGE_CHECK_POLICY_ENABLE);
    arv_gc_set_access_check_policy(objects_->gc, ARV_ACCESS_CHECK_POLICY_ENABLE);
}

AravisMap::~AravisMap()
{
    g_object_unref(objects_->gc);
    g_object_unref(objects_->device);
}

AravisMap::Node AravisMap::Find(const std::string &name) const { return arv_gc_get_node(objects_->gc, name.c_str()); }

AravisMap::Kind AravisMap::KindOf(Node node)
{
    if (ARV_IS_GC_ENUMERATION(node))
        return Kind::Enumeration;
    if (ARV_IS_GC_BOOLEAN(node))
        return Kind::Boolean;
    if (ARV_IS_GC_COMMAND(node))
        return Kind::Command;
    if (ARV_IS_GC_INTEGER(node))
        return Kind::Integer;
    if (ARV_IS_GC_FLOAT(node))
        return Kind::Float;
    return ARV_IS_GC_STRING(node) ? Kind::String : Kind::Other;
}

// clang-format off
std::int64_t AravisMap::GetInt(Node node)                 { return Checked(arv_gc_integer_get_value, As<ArvGcInteger>(node)); }
void AravisMap::SetInt(Node node, std::int64_t value)     { Checked(arv_gc_integer_set_value, As<ArvGcInteger>(node), value); }
std::int64_t AravisMap::IntMin(Node node)                 { return Checked(arv_gc_integer_get_min, As<ArvGcInteger>(node)); }
std::int64_t AravisMap::IntMax(Node node)                 { return Checked(arv_gc_integer_get_max, As<ArvGcInteger>(node)); }
std::int64_t AravisMap::IntInc(Node node)                 { return Checked(arv_gc_integer_get_inc, As<ArvGcInteger>(node)); }
double AravisMap::GetFloat(Node node)                     { return Checked(arv_gc_float_get_value, As<ArvGcFloat>(node)); }
void AravisMap::SetFloat(Node node, double value)         { Checked(arv_gc_float_set_value, As<ArvGcFloat>(node), value); }
double AravisMap::FloatMin(Node node)                     { return Checked(arv_gc_float_get_min, As<ArvGcFloat>(node)); }
double AravisMap::FloatMax(Node node)                     { return Checked(arv_gc_float_get_max, As<ArvGcFloat>(node)); }
const char *AravisMap::GetEnumText(Node node)             { return Checked(arv_gc_enumeration_get_string_value, As<ArvGcEnumeration>(node)); }
std::int64_t AravisMap::GetEnumInt(Node node)             { return Checked(arv_gc_enumeration_get_int_value, As<ArvGcEnumeration>(node)); }
void AravisMap::SetEnumText(Node node, const char *value) { Checked(arv_gc_enumeration_set_string_value, As<ArvGcEnumeration>(node), value); }
bool AravisMap::GetBool(Node node)                        { return Checked(arv_gc_boolean_get_value, As<ArvGcBoolean>(node)) != FALSE; }
void AravisMap::SetBool(Node node, bool value)            { Checked(arv_gc_boolean_set_value, As<ArvGcBoolean>(node), value ? TRUE : FALSE); }
void AravisMap::Execute(Node node)                        { Checked(arv_gc_command_execute, As<ArvGcCommand>(node)); }
const char *AravisMap::Version()                          { return G_STRINGIFY(ARAVIS_MAJOR_VERSION) "." G_STRINGIFY(ARAVIS_MINOR_VERSION) "." G_STRINGIFY(ARAVIS_MICRO_VERSION); }
// clang-format on

std::string AravisMap::GetText(Node node)
{
    const char *const text = Checked(arv_gc_string_get_value, As<ArvGcString>(node));
    return text != nullptr ? text : "";
}

void AravisMap::SetText(Node node, const std::string &value)
{
    Checked(arv_gc_string_set_value, As<ArvGcString>(node), value.c_str());
}

std::vector<std::string> AravisMap::AvailableEntries(Node node)
{
    guint count = 0;
    const char **const names =
        Checked(arv_gc_enumeration_dup_available_string_values, As<ArvGcEnumeration>(node), &count);
    std::vector<std::string> entries(names, names + count);
    g_free(names);
    return entries;
}

std::string AravisMap::Access(Node node)
{
    auto *const feature = As<ArvGcFeatureNode>(node);
    if (!Checked(arv_gc_feature_node_is_implemented, feature))
        return "NI";
    if (!Checked(arv_gc_feature_node_is_available, feature))
        return "NA";
    const bool locked = Checked(arv_gc_feature_node_is_locked, feature);
    switch (arv_gc_feature_node_get_actual_access_mode(feature)) {
    case ARV_GC_ACCESS_MODE_RO:
        return "RO";
    case ARV_GC_ACCESS_MODE_WO:
        return locked ? "NA" : "WO";
    case ARV_GC_ACCESS_MODE_RW:
        return locked ? "RO" : "RW";
    default:
        return "?";
    }
}

} // namespace Orvi::GenApi
