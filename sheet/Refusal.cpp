#include "Refusal.h"
namespace TORVA35::sheet {
std::string WhyRefused(const std::string&) {
  return "refused";
}
}  // namespace TORVA35::sheet
