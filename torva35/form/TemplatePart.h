#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/ObjectList.h"

namespace TORVA35 {

class clsTemplate;

/// A part of a form. It knows the part that holds it, so that a question can be numbered, but does not keep it
/// alive. A part that was added in several places belongs to the last one.
class TORVA35_API TemplatePart : public Object {
 protected:
  TemplatePart() = default;

  /// The form at the root, or null.
  virtual const clsTemplate* Form() const { return holder_ == nullptr ? nullptr : holder_->Form(); }
  /// Tells the form at the root that its questions may have other numbers from now on.
  virtual void StructureChanged() {
    if (holder_ != nullptr) holder_->StructureChanged();
  }

  /// Makes this part the holder of another one.
  void Hold(TemplatePart& part) {
    part.holder_ = this;
    StructureChanged();
  }
  /// Ends that, unless the part has another holder by now.
  void LetGo(TemplatePart& part) {
    if (part.holder_ == this) part.holder_ = nullptr;
  }

 private:
  TemplatePart* holder_ = nullptr;
};

/// The lists of a form.
template <class T>
class TORVA35_API TemplateList : public ObjectList<T, TemplatePart> {
 public:
  ~TemplateList() override {
    for (const Ref<T>& item : this->items_) this->LetGo(*item);
  }

  /// Appends the object itself, not a copy. Returns True. Raises 91 when there is none.
  virtual bool Add(Ref<T> oItem, CallSite at = CallSite::Current()) {
    T& item = Need(oItem, at);
    this->items_.push_back(std::move(oItem));
    this->Hold(item);
    return true;
  }

  /// Empties the list.
  void RemoveAll() {
    for (const Ref<T>& item : this->items_) this->LetGo(*item);
    this->items_.clear();
    this->StructureChanged();
  }
};

}  // namespace TORVA35
