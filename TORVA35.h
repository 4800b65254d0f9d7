#pragma once

/// @file
/// All that a host includes.

/// @namespace TORVA35
/// The whole library.
///
/// A host creates its error object (ErrorObject), gives it to `SetError`, loads tests (clsTORVATest), and lets the
/// engine merge them into a form. Objects are made with `New<Class>()`, shared through counted references, and
/// used on the thread that created them.

#include "base/Array.h"
#include "base/Error.h"
#include "base/Object.h"
#include "base/TaggedValue.h"
#include "base/Text.h"
#include "base/Types.h"
#include "errors/ErrorObject.h"
#include "errors/basError.h"
#include "merge/clsTORVA.h"
#include "model/Collection.h"
#include "model/basPublic.h"
#include "model/clsTORVATest.h"
#include "model/clsTORVATests.h"
#include "platform/DOMDocument.h"
#include "platform/Desktop.h"
#include "platform/clsLmf.h"
#include "platform/clsTemplate.h"
