#pragma once
#include <string>
namespace TORVA35::sheet {
std::string WhyRefused(const std::string& path);
}
