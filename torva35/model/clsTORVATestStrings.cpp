#include "torva35/model/clsTORVATestStrings.h"

#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"

namespace TORVA35 {
namespace {

constexpr std::size_t kAddLimit = 50;
constexpr std::size_t kLetLimit = 255;

constexpr Location kInitialize(u"TORVA35 - clsTORVATestStrings.Class_Initialize");
constexpr Location kCount(u"TORVA35 - clsTORVATestStrings.Count");
constexpr Location kAdd(u"TORVA35 - clsTORVATestStrings.Add");
constexpr Location kAddArray(u"TORVA35 - clsTORVATestStrings.AddArray");
constexpr Location kAddDelimitedString(u"TORVA35 - clsTORVATestStrings.AddDelimitedString");
constexpr Location kRemove(u"TORVA35 - clsTORVATestStrings.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATestStrings.RemoveAll");
constexpr Location kItem(u"TORVA35 - clsTORVATestStrings.Item");
constexpr Location kAsString(u"TORVA35 - clsTORVATestStrings.AsString");
constexpr Location kAsArray(u"TORVA35 - clsTORVATestStrings.AsArray");
constexpr Location kCopy(u"TORVA35 - clsTORVATestStrings.Copy");

bool IsCopyable(StringView text) {
  return text.size() <= kAddLimit && text.find(u'\t') == StringView::npos;
}

}  // namespace

clsTORVATestStrings::clsTORVATestStrings() {
  ReportedConstruction(kInitialize, [] {});
}

Long clsTORVATestStrings::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = items_.Count(); });
}

bool clsTORVATestStrings::Add(String Item, const TaggedValue& Key, const TaggedValue& Before,
                              const TaggedValue& After) {
  return Reported(kAdd, false, [&](bool& result) {
    Item = Cut(std::move(Item), kAddLimit);
    holdsUncopyable_ |= !IsCopyable(Item);
    items_.Add(std::move(Item), Key, Before, After);
    result = true;
  });
}

bool clsTORVATestStrings::AddArray(const Array<String>& Value) {
  return Reported(kAddArray, false, [&](bool& result) {
    const Long last = Value.UBound();
    for (std::int64_t i = Value.LBound(); i <= last; ++i) Add(Value[static_cast<Long>(i)]);
    result = true;
  });
}

bool clsTORVATestStrings::AddDelimitedString(const String& Items, const String& sDelimiter) {
  return Reported(kAddDelimitedString, false, [&](bool& result) {
    if (Items.empty()) return;
    result = AddArray(Split(Items, sDelimiter));
  });
}

bool clsTORVATestStrings::Remove(const TaggedValue& Index) {
  return Reported(kRemove, false, [&](bool& result) {
    if (items_.Find(Index) == nullptr) return;
    items_.Remove(Index);
    result = true;
  });
}

bool clsTORVATestStrings::RemoveAll() {
  return Reported(kRemoveAll, false, [&](bool& result) {
    for (Long i = items_.Count(); i >= 1; --i) items_.Remove(i);
    result = items_.Count() == 0;
  });
}

String clsTORVATestStrings::Item(const TaggedValue& Index) const {
  return Reported(kItem, String(), [&](String& result) {
    if (const String* text = Find(Index)) result = *text;
  });
}

void clsTORVATestStrings::Item(const TaggedValue& Index, String sValue) {
  Reported(kItem, [&] {
    if (items_.Find(Index) == nullptr) return;
    sValue = Cut(std::move(sValue), kLetLimit);
    holdsUncopyable_ |= !IsCopyable(sValue);
    items_.Add(std::move(sValue), Missing, Missing, Index);
    items_.Remove(Index);
  });
}

bool clsTORVATestStrings::Exists(const TaggedValue& Index) const {
  return Silently(false, [&](bool& result) { result = items_.Find(Index) != nullptr; });
}

String clsTORVATestStrings::AsString(const String& sDelimiter) const {
  return Reported(kAsString, String(), [&](String& result) {
    String text;
    const Long count = items_.Count();
    for (Long i = 1; i <= count; ++i) text.append(*items_.Item(i).As<String>()).append(sDelimiter);
    if (!text.empty()) text.resize(text.size() - sDelimiter.size());
    result = std::move(text);
  });
}

Array<String> clsTORVATestStrings::AsArray(Long lLowerBound) const {
  return Reported(kAsArray, Array<String>(), [&](Array<String>& result) {
    const Long count = items_.Count();
    if (count == 0) return;
    CheckedAdd(count - 1, lLowerBound);  // the upper bound must be a Long
    std::vector<String> texts;
    texts.reserve(static_cast<std::size_t>(count));
    for (Long i = 1; i <= count; ++i) texts.push_back(*items_.Item(i).As<String>());
    result = Array<String>(lLowerBound, std::move(texts));
  });
}

Ref<clsTORVATestStrings> clsTORVATestStrings::Copy() const {
  return Reported(kCopy, Ref<clsTORVATestStrings>(), [&](Ref<clsTORVATestStrings>& result) {
    auto copy = New<clsTORVATestStrings>();
    copy->AddCopies(*this);
    result = std::move(copy);
  });
}

void clsTORVATestStrings::AddCopies(const clsTORVATestStrings& from) {
  if (items_.Count() == 0 && from.CopiesAsItIs()) {
    items_ = from.items_.CopyUnkeyed();  // what the way through a text comes to, for a tenth of the cost
  } else {
    AddDelimitedString(from.AsString(u"\t"), u"\t");
  }
}

const String* clsTORVATestStrings::Find(const TaggedValue& Index) const {
  const TaggedValue* item = items_.Find(Index);
  return item == nullptr ? nullptr : item->As<String>();
}

bool clsTORVATestStrings::CopiesAsItIs() const {
  // The texts are joined by TAB, cut apart and added again; nothing to cut apart is an empty list.
  return !holdsUncopyable_ && !(items_.Count() == 1 && items_.Item(1).As<String>()->empty());
}

}  // namespace TORVA35
