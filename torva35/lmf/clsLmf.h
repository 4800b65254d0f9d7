#pragma once

#include <utility>

#include "torva35/lmf/clsLmfObjectives.h"
#include "torva35/lmf/clsLmfQuestions.h"
#include "torva35/lmf/clsLmfVersions.h"

namespace TORVA35 {

/// One LMF file as a tree of objects: the questions of a form with their scoring data, the learning objectives and
/// the versions of a test. A new one is empty. All lists are 1-based. The format of the file: docs/lmf-format.md.
///
/// What the library calls is virtual, so that a host can put its own objects in.
class TORVA35_API clsLmf : public Object {
 public:
  clsLmf();

  /// The model's own parts, never copies.
  ///@{
  virtual Ref<clsLmfQuestions> Questions() const { return questions_; }
  virtual Ref<clsLmfVersions> Versions() const { return versions_; }
  virtual Ref<clsLmfObjectives> Objectives() const { return objectives_; }
  ///@}

  /// Text of the host's, stored whole; a merge leaves it empty, and a test that is loaded from the file takes it.
  virtual String Description() const { return description_; }
  virtual void Description(String sDescription) { description_ = std::move(sDescription); }
  /// Likewise.
  virtual String Notes() const { return notes_; }
  virtual void Notes(String sNotes) { notes_ = std::move(sNotes); }

  /// Stored, without further effect; a merge sets 1.
  virtual Long Mode() const { return mode_; }
  virtual void Mode(Long lMode) { mode_ = lMode; }
  /// Number of pages of the form.
  virtual Long PageCount() const { return pageCount_; }
  virtual void PageCount(Long lCount) { pageCount_ = lCount; }

  /// Puts the built-in objective "(All Questions)" before the objectives, unless it is there already. Called
  /// before any objective or question is added, since the flags of the questions go by position. Returns 0.
  virtual Integer Prepare();
  /// Empties the model: all lists, texts and numbers, and the built-in objective. The lists stay the same objects.
  virtual void Clear();

  /// Replaces the whole model by that of a file. sPath: its path. False for a file that is missing, unreadable,
  /// damaged or no LMF file of a known version; the model is then empty. Raises only for exhausted memory (7).
  virtual bool Open(String sPath);
  /// Writes the model to a file, which a reader sees either as it was or whole: the new one is written beside it,
  /// reaches the disk, and takes its place. False when anything fails, and then an old file stays as it was; so it
  /// does when it may not be written or is no regular file. (Where only the new name fails to reach the disk, the
  /// new file is in place.) A symbolic link is followed. An existing file keeps its access rights. A model whose
  /// objectives lack the built-in one gets it in the file, and the flags of its questions one False before the
  /// others. A process that ends in the middle may leave a file ".lmf-...tmp" beside the old one; the next save
  /// removes it.
  virtual bool Save(String sPath) const;

 private:
  Ref<clsLmfQuestions> questions_;
  Ref<clsLmfVersions> versions_;
  Ref<clsLmfObjectives> objectives_;
  String description_;
  String notes_;
  Long mode_ = 0;
  Long pageCount_ = 0;
};

}  // namespace TORVA35
