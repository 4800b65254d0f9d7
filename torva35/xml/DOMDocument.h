#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "torva35/base/Export.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

/// A read-only XML DOM of sixteen operations. Nodes, lists and attribute maps are light handles into their
/// document and are valid until it is loaded again or destroyed. An empty handle stands for "no such node"; any
/// operation on it raises 91. Positions are 0-based.
namespace TORVA35 {

class IXMLDOMNode;
class IXMLDOMNodeList;
class IXMLDOMNamedNodeMap;
struct XmlPlace;
struct XmlTree;

/// Why the last `load` gave False.
struct XmlParseError {
  String reason;                ///< empty after a load that gave True
  std::int64_t line = 0;        ///< from 1; 0 where the file could not be read at all
  std::int64_t column = 0;      ///< from 1, in characters
  std::int64_t byteOffset = 0;  ///< from 0
};

/// One XML document, read from a file in one go.
///
/// Nodes are elements, texts and CDATA sections. Comments and processing instructions are none, and the text
/// around them is one node; so is text that mixes literal characters, character references and entities. Text of
/// white space alone is no node, except in a CDATA section. Namespaces are not processed. Internal entities
/// expand, parameter entities among them, and attributes get their declared values. External entities are never
/// opened and contribute nothing; no more does, in a document that refers to external ones, a reference in its
/// text to an entity that it does not declare. Nothing is validated. XML 1.x, whatever x.
///
/// Limits, each with words of its own in `parseError`: a file of 1 GiB; ten times the file's size, or 8 MiB, that
/// entities and declared attributes add; 10,000 declarations, of which 1,000 entities may refer to others; for all
/// elements together, 100 million attributes that are declared for them, given or not; 4 GiB of text.
///
/// Encodings: UTF-8, UTF-16, UTF-32, and each one that the system's converter knows and that keeps no state
/// between characters. A byte order mark beats the declaration.
class TORVA35_API DOMDocument {
 public:
  DOMDocument() noexcept;
  ~DOMDocument();
  /// Takes the document over; handles into it stay good.
  DOMDocument(DOMDocument&&) noexcept;
  /// Likewise; handles into the document that stood here are no longer good.
  DOMDocument& operator=(DOMDocument&&) noexcept;

  /// Loading is always finished when `load` returns, so this changes nothing.
  void put_async(bool) {}

  /// Whether the next `load` notes where each element begins, for `Line` and `Column` of nodes; not at first.
  void KeepPlaces(bool keep) { keepsPlaces_ = keep; }

  /// Reads and parses a file. vFileName: its path as a String; any other kind raises 13. False for a file that is
  /// missing, unreadable or not well-formed; the document is then empty and `parseError` says why. Exhausted
  /// memory is raised (7).
  bool load(const TaggedValue& vFileName);

  /// The root element, or an empty handle as long as no document is loaded.
  IXMLDOMNode Root() const;
  /// The document's root element if it has exactly this name, else an empty handle.
  IXMLDOMNode selectSingleNode(StringView name) const;
  /// Every element of exactly this name, at any depth, in document order.
  IXMLDOMNodeList getElementsByTagName(StringView name) const;

  /// About the last `load`.
  const XmlParseError& parseError() const { return parseError_; }

 private:
  friend struct XmlReader;

  // Members, not locals of load: a processor fault abandons the frames in between, and nothing of them may be
  // lost.
  std::unique_ptr<XmlTree> tree_;
  std::unique_ptr<XmlTree> building_;  // not to be seen before it is whole
  std::unique_ptr<struct XmlReader> reader_;
  XmlParseError parseError_;
  bool keepsPlaces_ = false;
};

/// An element, a text, a CDATA section, or an attribute.
class TORVA35_API IXMLDOMNode {
 public:
  IXMLDOMNode() = default;

  /// Whether the handle refers to something.
  explicit operator bool() const { return tree_ != nullptr; }

  /// Direct children in document order; none for anything but an element.
  IXMLDOMNodeList get_childNodes() const;
  /// Name of an element or attribute as written; "#text" and "#cdata-section" for the others.
  String get_nodeName() const;
  /// The name after its first colon, or the whole name; empty for a node without a name.
  String get_baseName() const;
  /// The characters of an attribute, a text or a CDATA section; Null for an element.
  TaggedValue get_nodeValue() const;
  /// The same, and for an element all characters of the texts and CDATA sections below it, joined.
  TaggedValue get_nodeTypedValue() const;
  /// The attributes of an element, an empty map when it has none; an empty handle for any other node.
  IXMLDOMNamedNodeMap get_attributes() const;

  /// What `get_nodeTypedValue` gives, without the tag.
  String Text() const;
  /// Likewise, as the UTF-8 that the document holds.
  std::string_view Utf8() const;
  /// Number that stands for the name in this document, from 1, in order of first appearance, or 0 for a node
  /// without a name: two elements have the same one exactly when they have the same name.
  std::uint32_t NameId() const;
  /// The largest of these numbers.
  std::uint32_t NameCount() const;
  /// The next node below the same parent, or an empty handle.
  IXMLDOMNode NextSibling() const;
  /// The first child, or an empty handle.
  IXMLDOMNode FirstChild() const;
  /// Where an element begins in the file: line from 1, and column in characters from 1. 0 where places were not
  /// kept, and for a node that is no element.
  ///@{
  std::int64_t Line() const;
  std::int64_t Column() const;
  ///@}

 private:
  friend class DOMDocument;
  friend class IXMLDOMNodeList;
  friend class IXMLDOMNamedNodeMap;
  IXMLDOMNode(const XmlTree* tree, std::uint32_t index, bool attribute = false)
      : tree_(tree), index_(index), attribute_(attribute) {}

  const XmlPlace* Place() const;

  const XmlTree* tree_ = nullptr;
  std::uint32_t index_ = 0;
  bool attribute_ = false;
};

/// A list of nodes. Walking it by position, forwards, takes constant time a step.
class TORVA35_API IXMLDOMNodeList {
 public:
  /// Number of nodes.
  Long get_length() const;
  /// The node at the position from 0, or an empty handle.
  IXMLDOMNode get_item(Long position) const;
  /// The first node on a list just obtained, then the next one at each call; an empty handle after the last.
  IXMLDOMNode nextNode();

 private:
  friend class DOMDocument;
  friend class IXMLDOMNode;

  const XmlTree* tree_ = nullptr;
  std::shared_ptr<const std::vector<std::uint32_t>> found_;  // of getElementsByTagName; children need no list
  std::uint32_t first_ = 0;
  Long length_ = 0;
  Long next_ = 0;
  // Where the last child was found, so that the walk to the next one is one step.
  mutable Long cursorPosition_ = 0;
  mutable std::uint32_t cursor_ = 0;
};

/// The attributes of an element, in document order.
class TORVA35_API IXMLDOMNamedNodeMap {
 public:
  /// Whether the handle refers to something.
  explicit operator bool() const { return tree_ != nullptr; }

  /// Number of attributes.
  Long get_length() const;
  /// The attribute at the position from 0, or an empty handle.
  IXMLDOMNode get_item(Long position) const;
  /// The attribute of exactly this name, or an empty handle.
  IXMLDOMNode getNamedItem(StringView name) const;
  /// Likewise, by its name in UTF-8.
  IXMLDOMNode Named(std::string_view name) const;

 private:
  friend class IXMLDOMNode;

  const XmlTree* tree_ = nullptr;
  std::uint32_t begin_ = 0;
  std::uint32_t end_ = 0;
};

}  // namespace TORVA35
