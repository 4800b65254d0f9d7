#include "torva35/xml/XmlTree.h"

namespace TORVA35 {

XmlTree::XmlTree() : numbers(0, NameHash{this}, NameEqual{this}) {}

std::string_view XmlTree::Name(std::uint32_t number) const {
  const std::uint32_t begin = number == 0 ? 0 : nameEnds[number - 1];
  return std::string_view(names).substr(begin, nameEnds[number] - begin);
}

std::uint32_t XmlTree::Intern(std::string_view name) {
  // These factors keep the usual names apart.
  const auto first = static_cast<unsigned char>(name.front());
  const auto middle = static_cast<unsigned char>(name[name.size() / 2]);
  const auto last = static_cast<unsigned char>(name.back());
  std::uint32_t& known = recent[(first * 9u + middle * 16u + last * 22u + name.size()) % recent.size()];
  if (known < NameCount() && Name(known) == name) return known;
  if (const auto found = numbers.find(name); found != numbers.end()) return known = *found;
  const std::uint32_t number = known = NameCount();
  names.append(name);
  nameEnds.push_back(static_cast<std::uint32_t>(names.size()));
  numbers.insert(number);
  elementCounts.push_back(0);
  return number;
}

std::uint32_t XmlTree::FindName(std::string_view name) const {
  const auto found = numbers.find(name);
  return found == numbers.end() ? kFirstReserved : *found;
}

}  // namespace TORVA35
