#include "framework/XmlNode.h"

Node::Node(const String& name, int line) : m_name(name), m_line(line) {}

Node::~Node()
{
    // Deep trees would otherwise recurse once per level in the destructors:
    // flatten the descendants into one list first.
    std::vector<std::unique_ptr<Node>> pending;
    pending.swap(m_children);
    while (!pending.empty()) {
        std::unique_ptr<Node> node = std::move(pending.back());
        pending.pop_back();
        for (auto& child : node->m_children) pending.push_back(std::move(child));
        node->m_children.clear();
    }
}

const String* Node::findAttribute(const String& key) const
{
    for (const Attribute& attribute : m_attributes)
        if (attribute.first == key) return &attribute.second;
    return nullptr;
}

String Node::getAttribute(const String& key) const
{
    const String* value = findAttribute(key);
    return value ? *value : String();
}

void Node::addAttribute(const String& key, const String& value)
{
    m_attributes.emplace_back(key, value);
}

Node* Node::getChild(size_t index) const
{
    return index < m_children.size() ? m_children[index].get() : nullptr;
}

Node* Node::findChild(const String& name) const
{
    for (const auto& child : m_children)
        if (child->getName() == name) return child.get();
    return nullptr;
}

Node* Node::addChild(std::unique_ptr<Node> child)
{
    if (!child) return nullptr;
    child->m_parent = this;
    m_children.push_back(std::move(child));
    return m_children.back().get();
}
