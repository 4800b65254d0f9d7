#pragma once

/// @file
/// All that a host includes.

/// @namespace TORVA35
/// The whole library.
///
/// A host creates its error object (ErrorObject), gives it to `SetError`, loads tests (clsTORVATest), and lets the
/// engine merge them into a form. Objects are made with `New<Class>()`, shared through counted references, and
/// used on the thread that created them.

#include "torva35/base/Array.h"
#include "torva35/base/Error.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/errors/basError.h"
#include "torva35/form/clsTemplate.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Collection.h"
#include "torva35/model/basPublic.h"
#include "torva35/model/clsTORVATest.h"
#include "torva35/model/clsTORVATests.h"
#include "torva35/platform/Desktop.h"
#include "torva35/xml/DOMDocument.h"
