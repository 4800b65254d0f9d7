#pragma once

#include <memory>

#include "torva35/base/Array.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"

namespace TORVA35 {

struct SharedSelection;

/// A list of texts with optional keys: answers, objectives, the labels of a scale. Positions count from 1; an
/// index that is a String is a key. Every failure is reported to the error object, never raised.
class TORVA35_API clsTORVATestStrings : public Object {
 public:
  clsTORVATestStrings();
  ~clsTORVATestStrings() override;

  /// Number of texts.
  Long Count() const;

  /// Adds the first 50 units of `Item`.
  /// Key: optional, unique without regard to case. Before, After: position or key of the neighbour; not both.
  /// Returns True. A key in use or a missing place is reported; then False, and the list is unchanged.
  bool Add(String Item, const TaggedValue& Key = Missing, const TaggedValue& Before = Missing,
           const TaggedValue& After = Missing);

  /// Adds every element, in order, without keys. Returns True, also when an `Add` fails. An array without elements
  /// is reported; then False.
  bool AddArray(const Array<String>& Value);

  /// Adds the pieces between the delimiters, empty ones too; an empty delimiter leaves `Items` whole. Returns
  /// True; False for empty `Items`, which adds nothing.
  bool AddDelimitedString(const String& Items, const String& sDelimiter = u"\t");

  /// Returns False when there is no such item, without a report.
  bool Remove(const TaggedValue& Index);

  /// Returns True when the list is empty afterwards.
  bool RemoveAll();

  /// The text at the index, or an empty one when there is none, without a report.
  String Item(const TaggedValue& Index) const;
  String operator[](const TaggedValue& Index) const { return Item(Index); }
  /// Replaces the text by the first 255 units of `sValue`. The item loses its key. Does nothing when there is no
  /// such item.
  void Item(const TaggedValue& Index, String sValue);

  /// Nothing is reported, whatever the index.
  bool Exists(const TaggedValue& Index) const;

  /// All texts, with the delimiter between them.
  String AsString(const String& sDelimiter = u"\t") const;

  /// All texts in order, from the position lLowerBound on; an array without elements when the list is empty.
  Array<String> AsArray(Long lLowerBound = 1) const;

  /// A new list of the same texts. It is made through `AsString` and `AddDelimitedString` with TAB: keys are gone,
  /// texts are cut at 50 units, a text with a TAB becomes two, and a list of one empty text becomes an empty list.
  Ref<clsTORVATestStrings> Copy() const;

 private:
  friend class Inside;

  const String* Find(const TaggedValue& Index) const;
  Long Size() const;
  TaggedValue Stored(String text);
  Collection& Own();
  void Take(std::unique_ptr<SharedSelection> selection);
  void AddCopies(const clsTORVATestStrings& from);
  bool CopiesAsItIs() const;

  Collection items_;
  std::unique_ptr<SharedSelection>
      shared_;                    // the texts until the first change, where the list began with some of them
  bool holdsUncopyable_ = false;  // or did: a text of more than 50 units or with a TAB
};

}  // namespace TORVA35
