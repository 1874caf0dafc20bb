#pragma once
// Which features a file holds, and how each value of a selected feature is reached.

#include "u3v/genapi/NodeMap.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Orvi::U3v {

/// A feature at one value of each of its selectors, the outermost first.
struct Selection {
    GenApi::NodeId feature;
    std::vector<std::pair<GenApi::NodeId, std::string>> selectors;
};

/// The features that the description marks as streamable. Of a description that marks none: all that a category lists,
/// without texts, which name the camera.
std::vector<GenApi::NodeId> PersistentFeatures(const GenApi::NodeMap &nodes);

/// Whether a line of a file may set the feature.
bool IsSetting(const GenApi::NodeMap &nodes, GenApi::NodeId id);

/// All selectors that the feature's value depends on, the outermost first.
std::vector<GenApi::NodeId> SelectorsOf(const GenApi::NodeMap &nodes, GenApi::NodeId feature);

/// Moves selectors, and puts them back where they were when it goes.
class SelectorMover {
  public:
    explicit SelectorMover(GenApi::NodeMap &nodes) : nodes_(nodes) {}
    ~SelectorMover();
    SelectorMover(const SelectorMover &) = delete;
    SelectorMover &operator=(const SelectorMover &) = delete;

    void Move(GenApi::NodeId selector, const std::string &value);
    void Move(const Selection &selection);
    /// Visits the feature at every value of its selectors that the camera offers.
    void ForEach(GenApi::NodeId feature, const std::function<void(const Selection &)> &visit);

  private:
    void Step(const std::vector<GenApi::NodeId> &selectors, Selection &selection,
              const std::function<void(const Selection &)> &visit);
    std::vector<std::string> ValuesOf(GenApi::NodeId selector) const;

    GenApi::NodeMap &nodes_;
    std::vector<std::pair<GenApi::NodeId, std::string>> before_;
};

} // namespace Orvi::U3v
