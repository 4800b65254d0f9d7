#include "torva35/errors/modStartup.h"

#include "torva35/errors/modvbCodeShieldSupport.h"

namespace TORVA35::modStartup {

void Main() {
  modvbCodeShieldSupport::InstallExceptionFilter();
}

}  // namespace TORVA35::modStartup
