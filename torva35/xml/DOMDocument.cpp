#include "torva35/xml/DOMDocument.h"

#include <algorithm>

#include <new>

#include "torva35/base/Error.h"
#include "torva35/base/Text.h"
#include "torva35/xml/XmlReader.h"
#include "torva35/xml/XmlTree.h"

namespace TORVA35 {
namespace {

const XmlTree& NeedTree(const XmlTree* tree, CallSite at = CallSite::Current()) {
  if (tree == nullptr) Raise(kNothing, at);
  return *tree;
}

String Utf16(std::string_view utf8) {
  String text;
  AppendUtf8(text, utf8);
  return text;
}

}  // namespace

DOMDocument::DOMDocument() noexcept = default;
DOMDocument::~DOMDocument() = default;
DOMDocument::DOMDocument(DOMDocument&&) noexcept = default;
DOMDocument& DOMDocument::operator=(DOMDocument&&) noexcept = default;

bool DOMDocument::load(const TaggedValue& vFileName) {
  parseError_ = {};
  tree_.reset();
  const auto* fileName = vFileName.As<String>();
  if (fileName == nullptr) Raise(kTypeMismatch);
  try {
    return XmlReader::Load(*this, InputFile(*fileName));
  } catch (const std::bad_alloc&) {
    reader_.reset();
    building_.reset();
    throw Error::OutOfMemory();
  }
}

IXMLDOMNode DOMDocument::Root() const {
  // A well-formed document has one root element and no text beside it.
  return tree_ == nullptr ? IXMLDOMNode() : IXMLDOMNode(tree_.get(), 1);
}

IXMLDOMNode DOMDocument::selectSingleNode(StringView name) const {
  const IXMLDOMNode root = Root();
  return root && tree_->nodes[1].name == tree_->FindName(ToUtf8(name)) ? root : IXMLDOMNode();
}

IXMLDOMNodeList DOMDocument::getElementsByTagName(StringView name) const {
  IXMLDOMNodeList list;
  list.tree_ = tree_.get();
  auto found = std::make_shared<std::vector<std::uint32_t>>();
  if (tree_ != nullptr) {
    const std::uint32_t number = tree_->FindName(ToUtf8(name));
    const std::uint32_t count = number < XmlTree::kFirstReserved ? tree_->elementCounts[number] : 0;
    found->reserve(count);
    for (std::uint32_t i = 1; found->size() < count; ++i) {
      if (tree_->nodes[i].name == number) found->push_back(i);
    }
  }
  list.length_ = static_cast<Long>(found->size());
  list.found_ = std::move(found);
  return list;
}

IXMLDOMNodeList IXMLDOMNode::get_childNodes() const {
  const XmlTree& tree = NeedTree(tree_);
  IXMLDOMNodeList list;
  list.tree_ = tree_;
  if (!attribute_) {
    list.first_ = list.cursor_ = index_ + 1;
    list.length_ = static_cast<Long>(tree.nodes[index_].children);
  }
  return list;
}

String IXMLDOMNode::get_nodeName() const {
  const XmlTree& tree = NeedTree(tree_);
  const std::uint32_t name = attribute_ ? tree.attributes[index_].name : tree.nodes[index_].name;
  if (name == XmlTree::kText) return u"#text";
  if (name == XmlTree::kCdata) return u"#cdata-section";
  return Utf16(tree.Name(name));
}

String IXMLDOMNode::get_baseName() const {
  const XmlTree& tree = NeedTree(tree_);
  const std::uint32_t name = attribute_ ? tree.attributes[index_].name : tree.nodes[index_].name;
  if (name >= XmlTree::kFirstReserved) return {};
  const std::string_view whole = tree.Name(name);
  const std::size_t colon = whole.find(':');
  return Utf16(colon == whole.npos ? whole : whole.substr(colon + 1));
}

TaggedValue IXMLDOMNode::get_nodeValue() const {
  const XmlTree& tree = NeedTree(tree_);
  if (!attribute_ && tree.IsElement(index_)) return Null;
  return Text();
}

TaggedValue IXMLDOMNode::get_nodeTypedValue() const {
  return Text();
}

IXMLDOMNamedNodeMap IXMLDOMNode::get_attributes() const {
  const XmlTree& tree = NeedTree(tree_);
  IXMLDOMNamedNodeMap map;
  if (attribute_ || !tree.IsElement(index_)) return map;
  map.tree_ = tree_;
  map.begin_ = tree.nodes[index_].attributes;
  map.end_ = tree.AttributesEnd(index_);
  return map;
}

String IXMLDOMNode::Text() const {
  return Utf16(Utf8());
}

std::string_view IXMLDOMNode::Utf8() const {
  const XmlTree& tree = NeedTree(tree_);
  return attribute_ ? tree.Value(tree.attributes[index_]) : tree.Characters(tree.nodes[index_]);
}

std::uint32_t IXMLDOMNode::NameId() const {
  const XmlTree& tree = NeedTree(tree_);
  const std::uint32_t name = attribute_ ? tree.attributes[index_].name : tree.nodes[index_].name;
  return name >= XmlTree::kFirstReserved ? 0 : name + 1;
}

std::uint32_t IXMLDOMNode::NameCount() const {
  return NeedTree(tree_).NameCount();
}

IXMLDOMNode IXMLDOMNode::NextSibling() const {
  const XmlTree& tree = NeedTree(tree_);
  if (attribute_ || tree.nodes[index_].next == 0) return {};
  return IXMLDOMNode(tree_, tree.nodes[index_].next);
}

const XmlPlace* IXMLDOMNode::Place() const {
  if (tree_ == nullptr) Raise(kNothing);
  if (attribute_) return nullptr;
  const auto found = std::lower_bound(tree_->places.begin(), tree_->places.end(), index_,
                                      [](const XmlPlace& place, std::uint32_t node) { return place.node < node; });
  return found != tree_->places.end() && found->node == index_ ? &*found : nullptr;
}

std::int64_t IXMLDOMNode::Line() const {
  const XmlPlace* place = Place();
  return place == nullptr ? 0 : place->line;
}

std::int64_t IXMLDOMNode::Column() const {
  const XmlPlace* place = Place();
  return place == nullptr ? 0 : place->column;
}

IXMLDOMNode IXMLDOMNode::FirstChild() const {
  const XmlTree& tree = NeedTree(tree_);
  if (attribute_ || tree.nodes[index_].children == 0) return {};
  return IXMLDOMNode(tree_, index_ + 1);
}

Long IXMLDOMNodeList::get_length() const {
  return length_;
}

IXMLDOMNode IXMLDOMNodeList::get_item(Long position) const {
  if (position < 0 || position >= length_) return {};
  if (found_ != nullptr) return IXMLDOMNode(tree_, (*found_)[static_cast<std::size_t>(position)]);
  if (position < cursorPosition_) {
    cursorPosition_ = 0;
    cursor_ = first_;
  }
  for (; cursorPosition_ < position; ++cursorPosition_) cursor_ = tree_->nodes[cursor_].next;
  return IXMLDOMNode(tree_, cursor_);
}

IXMLDOMNode IXMLDOMNodeList::nextNode() {
  return next_ < length_ ? get_item(next_++) : IXMLDOMNode();
}

Long IXMLDOMNamedNodeMap::get_length() const {
  NeedTree(tree_);
  return static_cast<Long>(end_ - begin_);
}

IXMLDOMNode IXMLDOMNamedNodeMap::get_item(Long position) const {
  if (position < 0 || position >= get_length()) return {};
  return IXMLDOMNode(tree_, begin_ + static_cast<std::uint32_t>(position), true);
}

IXMLDOMNode IXMLDOMNamedNodeMap::getNamedItem(StringView name) const {
  return Named(ToUtf8(name));
}

IXMLDOMNode IXMLDOMNamedNodeMap::Named(std::string_view name) const {
  const XmlTree& tree = NeedTree(tree_);
  for (std::uint32_t i = begin_; i < end_; ++i) {
    if (tree.Name(tree.attributes[i].name) == name) return IXMLDOMNode(tree_, i, true);
  }
  return {};
}

}  // namespace TORVA35
