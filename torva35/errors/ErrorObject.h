#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"

namespace TORVA35 {

/// The method that receives every failure of the library.
class TORVA35_API HasRaiseError {
 public:
  virtual ~HasRaiseError() = default;

  /// vNumber: the failure's number. sDescription: its text. sLocation: the member that failed, with "; Line: " and
  /// followed by the failing statement's line where one is known. The arguments without a name always have the
  /// value in the comment beside them. Changes to the arguments are not read back. Returns a value that converts
  /// to an Integer; nothing reads it. What this method throws, or a result that does not convert, ends in a
  /// message box of the library's own.
  virtual TaggedValue RaiseError(TaggedValue& vNumber, Long& /* 0 */, String& sDescription, String& sLocation,
                                 String& /* empty */, String& /* empty */, String& /* empty */,
                                 String& /* empty */, Long& /* 1 */, String& /* empty */, String& /* empty */,
                                 String& /* empty */, bool& /* False */) = 0;
};

/// The method that shows every dialog of the library.
class TORVA35_API HasMsgBoxEx {
 public:
  virtual ~HasMsgBoxEx() = default;

  /// Shows a modal dialog and returns when the user has answered.
  /// lStyle: 290 for the partial-credit question of `LoadXML`, 152 for all others.
  /// vOwner: the calling `clsTORVATest` or `clsTORVA`; Missing in the partial-credit question.
  /// sButton1: always "&OK". vButton2: "&Cancel" in the partial-credit question, else Missing.
  /// Returns the reply. Only `LoadXML` reads it, as a number: 7 or 2 mean that the user cancelled.
  virtual TaggedValue MsgBoxEx(String sTitle, String sText, Long lStyle, TaggedValue vOwner, String sButton1,
                               TaggedValue vButton2 = Missing) = 0;
};

/// What a host derives its error object from. `SetError` takes any `Object`: one that lacks a method is noticed
/// when that method is called, which then fails with 438.
class TORVA35_API ErrorObject : public Object, public HasRaiseError, public HasMsgBoxEx {
 protected:
  ErrorObject() : Object(OfHost{}) {}
};

}  // namespace TORVA35
