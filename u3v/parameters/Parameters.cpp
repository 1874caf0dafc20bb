#include "u3v/parameters/Parameters.h"

#include "u3v/core/AtomicFile.h"
#include "u3v/core/Log.h"
#include "u3v/parameters/FeatureText.h"
#include "u3v/parameters/SettingList.h"
#include "u3v/protocol/Camera.h"

#include <system_error>

namespace Orvi::U3v {
namespace {

using GenApi::NodeId;
using GenApi::NodeMap;

/// Failures of the file are GenICam failures, whose text reaches the application.
template <class Action>
void WithFileErrors(Action action)
{
    try {
        try {
            action();
        } catch (const std::system_error &error) {
            throw GenApi::Error(error.what());
        }
    } catch (const GenApi::Error &error) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "parameters: %s", error.what());
        throw;
    }
}

Parameter ParameterOf(const NodeMap &nodes, const Selection &selection)
{
    Parameter parameter;
    parameter.feature = nodes.Name(selection.feature);
    for (const auto &[selector, value] : selection.selectors)
        parameter.selectors.emplace_back(nodes.Name(selector), value);
    parameter.value = ReadText(nodes, selection.feature);
    return parameter;
}

std::vector<Parameter> ReadAll(NodeMap &nodes)
{
    std::vector<Parameter> parameters;
    for (const NodeId feature : PersistentFeatures(nodes)) {
        SelectorMover mover(nodes);
        mover.ForEach(feature, [&](const Selection &selection) {
            if (nodes.Access(feature) == GenApi::AccessMode::ReadWrite)
                parameters.push_back(ParameterOf(nodes, selection));
        });
    }
    return parameters;
}

} // namespace

void SaveParameters(Camera &camera, const std::string &path)
{
    WithFileErrors([&] {
        NodeMap &nodes = camera.Nodes();
        const auto lock = nodes.Lock(); // the selectors are this thread's until it is done
        const ParameterFile file{camera.Text(InfoItem::Model), ReadAll(nodes)};
        WriteFileAtomically(path, FormatParameters(file, {camera.Text(InfoItem::Manufacturer) + ", version " +
                                                          camera.Text(InfoItem::DeviceVersion) + ", serial number " +
                                                          camera.Text(InfoItem::Serial)}));
    });
}

void LoadParameters(Camera &camera, const std::string &path, DefectTable defects)
{
    WithFileErrors([&] {
        NodeMap &nodes = camera.Nodes();
        const ParameterFile file = ParseParameters(ReadWholeFile(path), path);
        if (const std::string model = camera.Text(InfoItem::Model); file.model != model)
            FailAtLine(path, 1,
                       "the file is of a camera of model \"" + file.model + "\", this one is \"" + model + '"');
        const auto lock = nodes.Lock();
        SettingList settings = SettingList::Check(nodes, file.parameters, path);
        if (defects == DefectTable::Leave)
            settings.Drop("DPC");
        // Writing one feature may move others, which the undoing of that write does not move back.
        SettingList before = SettingList::Check(nodes, ReadAll(nodes), path);
        SelectorMover mover(nodes);
        try {
            settings.Apply(mover);
        } catch (const GenApi::Error &) {
            settings.Undo(mover);
            before.Restore(mover);
            throw;
        }
    });
}

} // namespace Orvi::U3v
