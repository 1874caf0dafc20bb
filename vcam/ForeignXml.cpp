#include "vcam/ForeignXml.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace Orvi::Vcam {

namespace {

constexpr std::string_view s_registerKinds[] = {"IntReg",    "MaskedIntReg", "FloatReg",
                                                "StringReg", "Register",     "StructEntry"};
/// What the device itself need not obey.
constexpr const char *s_restrictions[] = {"ImposedAccessMode", "pIsLocked", "pIsAvailable", "pIsImplemented", "pError",
                                          "AccessMode",        "Cachable",  "PollingTime"};
constexpr const char *s_movers[] = {"pAddress", "pIndex", "IntSwissKnife", "pLength"};

bool IsRegister(const pugi::xml_node &node)
{
    return std::ranges::find(s_registerKinds, std::string_view(node.name())) != std::end(s_registerKinds);
}

/// A property of a node; an entry of a structure has those of the structure too.
pugi::xml_node Find(const pugi::xml_node &node, const char *property)
{
    const pugi::xml_node own = node.child(property);
    return own || std::string_view(node.name()) != "StructEntry" ? own : node.parent().child(property);
}

Rights RightsOf(const pugi::xml_node &node)
{
    const std::string_view mode = Find(node, "AccessMode").child_value();
    return mode == "RW" ? Rights::ReadWrite : mode == "WO" ? Rights::Write : Rights::Read;
}

bool IsMoving(const pugi::xml_node &node)
{
    return std::ranges::any_of(s_movers, [&node](const char *mover) { return !Find(node, mover).empty(); });
}

class Reader {
  public:
    explicit Reader(std::string_view text)
    {
        // Descriptions come padded with NULs.
        text = text.substr(0, text.find('\0'));
        const pugi::xml_parse_result result = document_.load_buffer(text.data(), text.size());
        if (!result) {
            throw std::runtime_error("the camera's XML cannot be read at byte " + std::to_string(result.offset) + ": " +
                                     result.description());
        }
        root_ = document_.child("RegisterDescription");
        if (!root_) {
            throw std::runtime_error(
                "the camera's XML is no GenICam description: it has no element 'RegisterDescription'");
        }
        Collect(root_);
    }

    ForeignXml Read()
    {
        ForeignXml xml;
        xml.vendor = root_.attribute("VendorName").value();
        xml.model = root_.attribute("ModelName").value();
        for (const auto &[name, node] : nodes_) {
            const std::string_view kind = node.name();
            if (const pugi::xml_node id = node.child("EventID")) {
                xml.eventIds[name] = static_cast<std::uint16_t>(std::strtoul(id.child_value(), nullptr, 16));
            }
            if (IsRegister(node) && !otherPorts_.contains(Find(node, "pPort").child_value())) {
                xml.registers.push_back({name, RightsOf(node), IsMoving(node)});
            } else if (kind == "Command") {
                xml.commands.push_back({name, RegisterOf(node)});
            } else if (node.child("pMin") || node.child("pMax") || node.child("pInc")) {
                xml.limits.push_back(
                    {name, node.child_value("pMin"), node.child_value("pMax"), node.child_value("pInc")});
            }
        }
        const auto registerBehind = [this](const char *feature) {
            const auto node = nodes_.find(feature);
            return node == nodes_.end() ? std::string() : RegisterOf(node->second);
        };
        xml.lutValue = registerBehind("LUTValue");
        for (const char *feature : {"LineStatus", "LineStatusAll"}) {
            if (const std::string name = registerBehind(feature); !name.empty()) {
                xml.lineStatus.push_back(name);
            }
        }
        Lift(root_);
        std::ostringstream text;
        document_.save(text, "", pugi::format_raw);
        xml.deviceSide = text.str();
        return xml;
    }

  private:
    void Collect(const pugi::xml_node &parent)
    {
        for (const pugi::xml_node node : parent.children()) {
            const std::string_view kind = node.name();
            if (kind == "Group" || kind == "StructReg") {
                Collect(node);
            } else if (const std::string name = node.attribute("Name").value(); !name.empty()) {
                nodes_[name] = node;
                // Events and chunks bring their own data.
                if (kind == "Port" && (node.child("ChunkID") || node.child("EventID"))) {
                    otherPorts_.insert(name);
                }
            }
        }
    }

    /// The register at the end of a chain of pValue.
    std::string RegisterOf(pugi::xml_node node) const
    {
        for (std::size_t steps = 0; steps < nodes_.size(); ++steps) {
            const auto next = nodes_.find(node.child_value("pValue"));
            if (next == nodes_.end()) {
                return {};
            }
            if (IsRegister(next->second)) {
                return next->first;
            }
            node = next->second;
        }
        return {};
    }

    static void Lift(const pugi::xml_node &parent)
    {
        for (pugi::xml_node node : parent.children()) {
            if (std::string_view(node.name()) == "EnumEntry") {
                continue; // whether there is such a choice matters to the device too
            }
            for (const char *restriction : s_restrictions) {
                while (node.remove_child(restriction)) {
                }
            }
            if (IsRegister(node)) {
                node.append_child("AccessMode").text().set("RW");
                node.append_child("Cachable").text().set("NoCache");
            }
            Lift(node);
        }
    }

    pugi::xml_document document_;
    pugi::xml_node root_;
    std::map<std::string, pugi::xml_node> nodes_;
    std::set<std::string, std::less<>> otherPorts_;
};

} // namespace

ForeignXml ReadForeignXml(std::string_view text) { return Reader(text).Read(); }

CameraConfig NameByDescription(CameraConfig config)
{
    if (config.xml.empty()) {
        return config;
    }
    const CameraConfig own;
    const ForeignXml xml = ReadForeignXml(config.xml);
    if (config.vendor == own.vendor && !xml.vendor.empty()) {
        config.vendor = xml.vendor;
    }
    if (config.model == own.model && !xml.model.empty()) {
        config.model = xml.model;
    }
    return config;
}

} // namespace Orvi::Vcam
