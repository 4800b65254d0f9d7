#pragma once

#include <memory>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"
#include "torva35/base/Types.h"
#include "torva35/errors/basError.h"

namespace TORVA35 {

inline constexpr const char16_t* kLine = u"\r\n";
inline constexpr const char16_t* kBlankLine = u"\r\n\r\n";

/// Shows one of the engine's dialogs: one button, owned by the object whose member is running.
template <class Owner>
void ShowDialog(const char16_t* title, String text, Owner& owner, CallSite at = CallSite::Current()) {
  Ref<Object> self = owner.weak_from_this().lock();
  if (self == nullptr) self = NotOwned<Object>(owner);  // the host keeps it otherwise than by a counted reference
  basError::MsgBoxEx(title, std::move(text), 152, std::move(self), u"&OK", Missing, at);
}

}  // namespace TORVA35
