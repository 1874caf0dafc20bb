#include "u3v/genapi/PlainNodes.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

bool CategoryNode::Take(const Property &property)
{
    if (property.prop != Prop::pFeature)
        return Node::Take(property);
    Node *const feature = property.Target(Role::Feature);
    feature->SetFeature();
    features_.push_back(feature->Id());
    return true;
}

bool StringNode::Take(const Property &property)
{
    switch (property.prop) {
    case Prop::Value:
        text_ = property.Text();
        given_ = true;
        return true;
    case Prop::pValue:
        value_ = property.Target(Role::Value);
        if (value_->Type() != NodeType::String)
            property.Fail(Say("'", property.Text(), "' has no text"));
        given_ = true;
        return true;
    default:
        return Node::Take(property);
    }
}

void StringNode::Finish(Loader &loader)
{
    if (!given_)
        FailLoading(loader, *this, "has no value");
}

void StringNode::SetText(Run &run, std::string_view value)
{
    if (value_) {
        value_->SetText(run, value);
    } else {
        text_ = value;
        run.map.Changed(*this);
    }
}

} // namespace Orvi::GenApi
