#include "errors/modStartup.h"

#include "errors/modvbCodeShieldSupport.h"

namespace TORVA35::modStartup {

void Main() {
  modvbCodeShieldSupport::InstallExceptionFilter();
}

}  // namespace TORVA35::modStartup
