#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Types.h"
#include "torva35/platform/FaultGuard.h"

/// Turns a processor fault inside a member into a failure like any other, with a number and a name. See
/// platform/FaultGuard.h for what a host has to know of the way back from a fault.
namespace TORVA35::modvbCodeShieldSupport {

/// Registers `vbcsExceptionFilter` for the process and prepares the calling thread. Does nothing when called again
/// on the same thread.
TORVA35_API void InstallExceptionFilter();
/// Whether it has done so on the calling thread.
bool IsExceptionFilterInstalled();

/// Raises the failure that stands for a fault. The innermost nested record counts: the description is its code's
/// name, the number (code And 0x8EF) Or 10000, the source "vbcsExceptionFilter". It does not return.
TORVA35_API Long vbcsExceptionFilter(ExceptionPointers& pointers);

/// Name of an exception code: "Access Violation" for 0xC0000005. A code without a name gives "Unknown (&H", the
/// code as eight hexadecimal digits, and ")". Codes whose bits leave the mask of the number rule may share a
/// number, so it is the name that tells faults apart.
TORVA35_API String ExceptionName(Long lCode);

}  // namespace TORVA35::modvbCodeShieldSupport
