#pragma once
// Values that a camera is to take together, in whatever order it takes them.

#include "u3v/parameters/ParameterFile.h"
#include "u3v/parameters/Selections.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvi::U3v {

class SettingList {
  public:
    /// Looks all names and values up. Throws GenApi::Error that names the line. Nothing is written.
    static SettingList Check(GenApi::NodeMap &nodes, const std::vector<Parameter> &parameters,
                             const std::string &fileName);

    /// Forgets the features whose names begin so.
    void Drop(std::string_view prefix);

    /// Throws GenApi::Error that names the first line which the camera does not take whatever the others are.
    void Apply(SelectorMover &mover);
    /// Takes back what Apply() has written, the last first. What cannot be taken back is logged.
    void Undo(SelectorMover &mover) noexcept;
    /// As Apply(), but what is not taken is logged and left.
    void Restore(SelectorMover &mover) noexcept;

  private:
    struct Setting {
        std::size_t line;
        std::string name;
        Selection selection;
        std::string value;
        std::optional<std::string> landed; ///< what the camera made of the value
        std::string failure;
    };
    struct Written {
        const Setting *setting;
        std::string before;
    };

    SettingList(GenApi::NodeMap &nodes, const std::string &fileName) : nodes_(&nodes), fileName_(fileName) {}

    Setting CheckOne(const Parameter &parameter) const;
    GenApi::NodeId Find(const Parameter &parameter, const std::string &name) const;
    bool ApplyPending(SelectorMover &mover);
    bool TryOne(SelectorMover &mover, Setting &setting);
    void RevokeMoved(SelectorMover &mover);
    Setting *FirstPending();

    GenApi::NodeMap *nodes_;
    std::string fileName_;
    std::vector<Setting> settings_;
    std::vector<Written> written_;
};

} // namespace Orvi::U3v
