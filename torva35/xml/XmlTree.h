#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

/// The document that the DOM's handles refer to: flat arrays in document order, freed in one go.
namespace TORVA35 {

struct XmlNode {
  std::uint32_t name;        // XmlTree::kText, kCdata, or the number of an element's name
  std::uint32_t next;        // next sibling, or 0: the document itself is no sibling
  std::uint32_t children;    // how many; the first one stands directly after its parent
  std::uint32_t attributes;  // the first one; the next node's first one ends them
  std::uint32_t textBegin;   // the characters of the node and all below it
  std::uint32_t textEnd;
};

struct XmlAttribute {
  std::uint32_t name;
  std::uint32_t valueBegin;
  std::uint32_t valueEnd;
};

/// Where an element begins in the file.
struct XmlPlace {
  std::uint32_t node;
  std::uint32_t line;    // from 1
  std::uint32_t column;  // from 1
};

struct XmlTree {
  static constexpr std::uint32_t kText = 0xFFFFFFFF;
  static constexpr std::uint32_t kCdata = 0xFFFFFFFE;
  static constexpr std::uint32_t kDocument = 0xFFFFFFFD;
  static constexpr std::uint32_t kFirstReserved = kDocument;

  XmlTree();
  XmlTree(const XmlTree&) = delete;
  XmlTree& operator=(const XmlTree&) = delete;

  /// The number of a name, from 0; a new one for a name not seen before.
  std::uint32_t Intern(std::string_view name);
  /// The number of a name, or kFirstReserved when the document does not have it.
  std::uint32_t FindName(std::string_view name) const;
  std::string_view Name(std::uint32_t number) const;
  std::uint32_t NameCount() const { return static_cast<std::uint32_t>(nameEnds.size()); }

  bool IsElement(std::uint32_t node) const { return nodes[node].name < kFirstReserved; }
  std::string_view Characters(const XmlNode& node) const {
    return std::string_view(text).substr(node.textBegin, node.textEnd - node.textBegin);
  }
  std::string_view Value(const XmlAttribute& attribute) const {
    return std::string_view(values).substr(attribute.valueBegin, attribute.valueEnd - attribute.valueBegin);
  }
  std::uint32_t AttributesEnd(std::uint32_t node) const {
    return node + 1 < nodes.size() ? nodes[node + 1].attributes : static_cast<std::uint32_t>(attributes.size());
  }

  std::vector<std::uint32_t> elementCounts;  // by the number of their name
  std::vector<XmlNode> nodes;                // the document first, its root element among its children
  std::vector<XmlAttribute> attributes;
  bool keepsPlaces = false;
  std::vector<XmlPlace> places;  // of the elements, in order, if they are kept
  std::string text;              // all characters, UTF-8
  std::string values;            // all attribute values, UTF-8

 private:
  // Looks names up by their characters, wherever these stand.
  struct NameHash {
    using is_transparent = void;
    const XmlTree* tree;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    std::size_t operator()(std::uint32_t number) const { return (*this)(tree->Name(number)); }
  };
  struct NameEqual {
    using is_transparent = void;
    const XmlTree* tree;
    std::string_view Text(std::string_view name) const { return name; }
    std::string_view Text(std::uint32_t number) const { return tree->Name(number); }
    template <class Left, class Right>
    bool operator()(Left left, Right right) const {
      return Text(left) == Text(right);
    }
  };

  std::string names;  // all names, one after the other, UTF-8
  std::vector<std::uint32_t> nameEnds;
  std::unordered_set<std::uint32_t, NameHash, NameEqual> numbers;
  // Names seen last, by what is quick to tell of them: nearly every element finds its name here.
  std::array<std::uint32_t, 256> recent{};
};

}  // namespace TORVA35
