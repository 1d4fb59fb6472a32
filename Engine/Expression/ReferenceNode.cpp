#include "Engine/Expression/ReferenceNode.h"

#include <utility>

namespace qe::expression {

ReferenceNode::ReferenceNode(std::vector<I18NString> names)
    : Node(ENodeKind::Reference), mNames(std::move(names))
{}

ReferenceNode::~ReferenceNode() = default;

} // namespace qe::expression
