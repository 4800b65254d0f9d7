#include "torva35/model/clsTORVATestStrings.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/model/SharedTexts.h"

namespace TORVA35 {
namespace {

constexpr std::size_t kReplacedUnits = 255;

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

}  // namespace

clsTORVATestStrings::clsTORVATestStrings() {
  ReportedConstruction(kInitialize, [] {});
}

clsTORVATestStrings::~clsTORVATestStrings() = default;

Long clsTORVATestStrings::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = Size(); });
}

bool clsTORVATestStrings::Add(String Item, const TaggedValue& Key, const TaggedValue& Before,
                              const TaggedValue& After) {
  return Reported(kAdd, false, [&](bool& result) {
    Own().Add(Stored(std::move(Item)), Key, Before, After);
    result = true;
  });
}

bool clsTORVATestStrings::AddArray(const Array<String>& Value) {
  return Reported(kAddArray, false, [&](bool& result) {
    const Long last = Value.UBound();
    std::int64_t i = Value.LBound();
    try {
      // As by `Add`, without a boundary for each.
      Collection& items = Own();
      items.Reserve(last - i + 1);
      for (; i <= last; ++i) items.Append(Stored(Value[static_cast<Long>(i)]));
    } catch (const std::bad_alloc&) {
      for (; i <= last; ++i) Add(Value[static_cast<Long>(i)]);
    }
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
    if (Find(Index) == nullptr) return;
    Own().Remove(Index);
    result = true;
  });
}

bool clsTORVATestStrings::RemoveAll() {
  return Reported(kRemoveAll, false, [&](bool& result) {
    shared_.reset();
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
    if (Find(Index) == nullptr) return;
    sValue = Cut(std::move(sValue), kReplacedUnits);
    holdsUncopyable_ |= !IsCopyable(sValue);
    Own().Add(std::move(sValue), Missing, Missing, Index);
    items_.Remove(Index);
  });
}

bool clsTORVATestStrings::Exists(const TaggedValue& Index) const {
  return Silently(false, [&](bool& result) { result = Find(Index) != nullptr; });
}

String clsTORVATestStrings::AsString(const String& sDelimiter) const {
  return Reported(kAsString, String(), [&](String& result) {
    String text;
    const Long count = Size();
    for (Long i = 1; i <= count; ++i) text.append(*Find(i)).append(sDelimiter);
    if (!text.empty()) text.resize(text.size() - sDelimiter.size());
    result = std::move(text);
  });
}

Array<String> clsTORVATestStrings::AsArray(Long lLowerBound) const {
  return Reported(kAsArray, Array<String>(), [&](Array<String>& result) {
    const Long count = Size();
    if (count == 0) return;
    CheckedAdd(count - 1, lLowerBound);  // the upper bound must be a Long
    std::vector<String> texts;
    texts.reserve(static_cast<std::size_t>(count));
    for (Long i = 1; i <= count; ++i) texts.push_back(*Find(i));
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
  if (Size() > 0 || !from.CopiesAsItIs()) {
    AddDelimitedString(from.AsString(u"\t"), u"\t");
    return;
  }
  // The result of the way through a text, at a tenth of its cost.
  if (from.shared_ != nullptr) {
    shared_ = std::make_unique<SharedSelection>(*from.shared_);
    shared_->isKeyed = false;
  } else {
    items_ = from.items_.Copy(false);
  }
}

const String* clsTORVATestStrings::Find(const TaggedValue& Index) const {
  if (shared_ != nullptr) return shared_->Find(Index);
  const TaggedValue* item = items_.Find(Index);
  return item == nullptr ? nullptr : item->As<String>();
}

Long clsTORVATestStrings::Size() const {
  return shared_ != nullptr ? static_cast<Long>(shared_->places.size()) : items_.Count();
}

// What is stored of an added text, which is noted for a later copy.
TaggedValue clsTORVATestStrings::Stored(String text) {
  if (text.size() > kAddedUnits) text = Cut(std::move(text), kAddedUnits);
  holdsUncopyable_ |= !IsCopyable(text);
  return text;
}

// The items, to be changed.
Collection& clsTORVATestStrings::Own() {
  if (shared_ != nullptr) {
    items_ = shared_->ToCollection();
    shared_.reset();
  }
  return items_;
}

// In the place of `Add` for each; the list is empty.
void clsTORVATestStrings::Take(std::unique_ptr<SharedSelection> selection) {
  holdsUncopyable_ = !selection->all->AreCopyable();
  shared_ = std::move(selection);
}

bool clsTORVATestStrings::CopiesAsItIs() const {
  // The texts are joined by TAB, cut apart and added again; nothing to cut apart is an empty list.
  return !holdsUncopyable_ && !(Size() == 1 && Find(1)->empty());
}

}  // namespace TORVA35
