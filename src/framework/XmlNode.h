#pragma once
// The element tree the XML reader builds: one Node per element, with its
// attributes in document order, its text and its children. A node owns its
// children.
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "framework/String.h"

class Node {
public:
    using Attribute = std::pair<String, String>;

    explicit Node(const String& name, int line = 0);
    ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    const String& getName() const { return m_name; }
    // Line of the start tag in the source, 0 when built in code.
    int getLine() const { return m_line; }
    Node* getParent() const { return m_parent; }

    const std::vector<Attribute>& getAttributes() const { return m_attributes; }
    // Null when the element has no such attribute.
    const String* findAttribute(const String& key) const;
    // Empty when the element has no such attribute.
    String getAttribute(const String& key) const;
    void addAttribute(const String& key, const String& value);

    // Character data directly inside the element, as written (not trimmed).
    const String& getText() const { return m_text; }
    void setText(const String& text) { m_text = text; }

    size_t getChildCount() const { return m_children.size(); }
    // Null when the index is out of range.
    Node* getChild(size_t index) const;
    // The first child of that name, or null.
    Node* findChild(const String& name) const;
    // Takes ownership; returns the child.
    Node* addChild(std::unique_ptr<Node> child);

private:
    String m_name;
    int m_line;
    Node* m_parent = nullptr;
    std::vector<Attribute> m_attributes;
    String m_text;
    std::vector<std::unique_ptr<Node>> m_children;
};
