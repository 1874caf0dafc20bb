#pragma once
// Category, String, and the kinds that are listed but do nothing here.

#include "u3v/genapi/Properties.h"

namespace Orvi::GenApi {

class CategoryNode final : public Node {
  public:
    using Node::Node;

    bool Take(const Property &property) override;
    const std::vector<NodeId> &Features() const { return features_; }

  private:
    std::vector<NodeId> features_;
};

class StringNode final : public Node {
  public:
    using Node::Node;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;
    std::string GetText(Run &run) override { return value_ ? value_->GetText(run) : text_; }
    void SetText(Run &run, std::string_view value) override;

  protected:
    AccessMode ValueAccess(Run &run) override { return value_ ? value_->Access(run) : AccessMode::ReadWrite; }

  private:
    std::string text_;
    Node *value_ = nullptr;
    bool given_ = false;
};

/// Node: a name and attributes.
class PlainNode final : public Node {
  public:
    using Node::Node;
};

/// AdvFeatureLock, SmartFeature, ConfRom and the like, of cameras on another bus: their own properties are not used.
class OtherBusNode final : public Node {
  public:
    using Node::Node;

  protected:
    AccessMode ValueAccess(Run &) override { return AccessMode::NotImplemented; }
};

} // namespace Orvi::GenApi
