#include "u3v/parameters/SettingList.h"

#include "u3v/core/Log.h"
#include "u3v/parameters/FeatureText.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

// A feature that follows another is set again after it; two that follow each other would never come to rest.
constexpr int maxRounds = 4;

} // namespace

SettingList SettingList::Check(GenApi::NodeMap &nodes, const std::vector<Parameter> &parameters,
                               const std::string &fileName)
{
    SettingList list(nodes, fileName);
    for (const Parameter &parameter : parameters)
        list.settings_.push_back(list.CheckOne(parameter));
    return list;
}

SettingList::Setting SettingList::CheckOne(const Parameter &parameter) const
{
    Setting setting{
        parameter.line, NameOf(parameter), {Find(parameter, parameter.feature), {}}, parameter.value, {}, {}};
    if (!IsSetting(*nodes_, setting.selection.feature))
        FailAtLine(fileName_, parameter.line, '[' + parameter.feature + "] is not set from files");
    const std::vector<GenApi::NodeId> selectors = SelectorsOf(*nodes_, setting.selection.feature);
    for (const auto &[name, value] : parameter.selectors) {
        const GenApi::NodeId selector = Find(parameter, name);
        if (std::find(selectors.begin(), selectors.end(), selector) == selectors.end())
            FailAtLine(fileName_, parameter.line, '[' + name + "] does not select [" + parameter.feature + ']');
        setting.selection.selectors.emplace_back(selector, value);
    }
    try {
        CheckText(*nodes_, setting.selection.feature, parameter.value);
        for (const auto &[selector, value] : setting.selection.selectors)
            CheckText(*nodes_, selector, value);
    } catch (const GenApi::Error &error) {
        FailAtLine(fileName_, parameter.line, error.what());
    }
    return setting;
}

GenApi::NodeId SettingList::Find(const Parameter &parameter, const std::string &name) const
{
    if (const auto id = nodes_->Find(name))
        return *id;
    FailAtLine(fileName_, parameter.line, "the camera has no feature [" + name + ']');
}

void SettingList::Drop(std::string_view prefix)
{
    std::erase_if(settings_, [&](const Setting &setting) { return setting.name.starts_with(prefix); });
}

void SettingList::Apply(SelectorMover &mover)
{
    for (int round = 0; round < maxRounds; ++round) {
        while (ApplyPending(mover))
            ;
        if (const Setting *const refused = FirstPending())
            FailAtLine(fileName_, refused->line, refused->failure);
        RevokeMoved(mover);
        if (FirstPending() == nullptr)
            return;
    }
    LogDevice(CAM_LOG_LEVEL_WARN, "parameters: %s, line %zu: [%s] does not stay at its value", fileName_.c_str(),
              FirstPending()->line, FirstPending()->name.c_str());
}

/// Goes once through what is not set yet; false when nothing is left, or nothing more is taken.
bool SettingList::ApplyPending(SelectorMover &mover)
{
    bool isAnySet = false, isAnyLeft = false;
    for (Setting &setting : settings_)
        if (!setting.landed)
            (TryOne(mover, setting) ? isAnySet : isAnyLeft) = true;
    return isAnySet && isAnyLeft;
}

bool SettingList::TryOne(SelectorMover &mover, Setting &setting)
{
    const GenApi::NodeId feature = setting.selection.feature;
    try {
        mover.Move(setting.selection);
        // A value that is so already is not written: it may be locked, and is right nevertheless.
        const bool isReadable = IsReadable(nodes_->Access(feature));
        std::string before = isReadable ? ReadText(*nodes_, feature) : std::string();
        if (!isReadable || before != setting.value) {
            if (isReadable)
                written_.push_back({&setting, std::move(before)});
            WriteText(*nodes_, feature, setting.value);
        }
        setting.landed = isReadable ? ReadText(*nodes_, feature) : setting.value;
        return true;
    } catch (const GenApi::Error &error) {
        setting.failure = error.what();
        return false;
    }
}

/// What the writing of another feature has changed is to be set again.
void SettingList::RevokeMoved(SelectorMover &mover)
{
    for (Setting &setting : settings_) {
        const GenApi::NodeId feature = setting.selection.feature;
        mover.Move(setting.selection);
        if (IsReadable(nodes_->Access(feature)) && ReadText(*nodes_, feature) != setting.landed)
            setting.landed.reset();
    }
}

SettingList::Setting *SettingList::FirstPending()
{
    const auto found = std::find_if(settings_.begin(), settings_.end(), [](const Setting &s) { return !s.landed; });
    return found == settings_.end() ? nullptr : &*found;
}

void SettingList::Undo(SelectorMover &mover) noexcept
{
    for (; !written_.empty(); written_.pop_back()) {
        const auto &[setting, before] = written_.back();
        try {
            mover.Move(setting->selection);
            if (ReadText(*nodes_, setting->selection.feature) != before)
                WriteText(*nodes_, setting->selection.feature, before);
        } catch (const std::exception &error) {
            LogDevice(CAM_LOG_LEVEL_WARN, "parameters not put back: %s", error.what());
        }
    }
}

void SettingList::Restore(SelectorMover &mover) noexcept
{
    try {
        Apply(mover);
    } catch (const std::exception &error) {
        LogDevice(CAM_LOG_LEVEL_WARN, "parameters not put back: %s", error.what());
    }
}

} // namespace Orvi::U3v
