#include "torva35/errors/Caught.h"

#include <exception>
#include <new>

#include "torva35/base/Text.h"

namespace TORVA35 {

Error CaughtError() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return Error::OutOfMemory();
  } catch (const std::exception& foreign) {
    const String text = FromUtf8(foreign.what());
    return Error(kInternalError, text.empty() ? StandardText(kInternalError) : text);
  } catch (...) {
    return Error(kInternalError, StandardText(kInternalError));
  }
}

Long CaughtNumber() noexcept {
  try {
    throw;
  } catch (const Error& error) {
    return error.Number();
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  } catch (...) {
    return kInternalError;
  }
}

}  // namespace TORVA35
