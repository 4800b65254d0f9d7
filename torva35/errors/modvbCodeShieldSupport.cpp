#include "torva35/errors/modvbCodeShieldSupport.h"

#include <cstdint>

#include "torva35/base/Error.h"
#include "torva35/errors/Reported.h"

namespace TORVA35::modvbCodeShieldSupport {
namespace {

constexpr Location kInstallExceptionFilter(u"TORVA35 - modvbCodeShieldSupport.InstallExceptionFilter");
constexpr Location kExceptionName(u"TORVA35 - modvbCodeShieldSupport.ExceptionName");

struct NamedCode {
  std::uint32_t code;
  const char16_t* name;
};

constexpr NamedCode kNames[] = {
    {0x80000001, u"Guard Page Violation"},
    {0x80000002, u"Data Type Misalignment"},
    {0x80000003, u"Breakpoint"},
    {0x80000004, u"Single Step"},
    {0xC0000005, u"Access Violation"},
    {0xC0000006, u"In Page Error"},
    {0xC0000008, u"Invalid Handle"},
    {0xC000001D, u"Illegal Instruction"},
    {0xC0000025, u"Non Continuable Exception"},
    {0xC0000026, u"Invalid Disposition"},
    {0xC000008C, u"Array Bounds Exceeded"},
    {0xC000008D, u"Float Denormal Operand"},
    {0xC000008E, u"Divide By Zero"},
    {0xC000008F, u"Floating Point Inexact Result"},
    {0xC0000090, u"Invalid Operation"},
    {0xC0000091, u"Float Overflow"},
    {0xC0000092, u"Float Stack Check"},
    {0xC0000093, u"Float Underflow"},
    {0xC0000094, u"Integer Divide By Zero"},
    {0xC0000095, u"Integer Overflow"},
    {0xC0000096, u"Privileged Instruction"},
    {0xC00000FD, u"Stack Overflow"},
    {0xC000013A, u"Control-C Exit"},
};

thread_local bool installed = false;

String EightHexDigits(std::uint32_t code) {
  String digits(8, u'0');
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, code >>= 4) {
    *digit = u"0123456789ABCDEF"[code & 0xF];
  }
  return digits;
}

}  // namespace

void InstallExceptionFilter() {
  Reported(kInstallExceptionFilter, [] {
    if (installed) return;
    SetUnhandledExceptionFilter(vbcsExceptionFilter);
    installed = true;
  });
}

bool IsExceptionFilterInstalled() {
  return installed;
}

Long vbcsExceptionFilter(ExceptionPointers& pointers) {
  const ExceptionRecord* record = pointers.Record;
  while (record->Nested != nullptr) record = record->Nested;
  const auto code = static_cast<Long>(record->Code);
  throw Error((code & 0x8EF) | 10000, ExceptionName(code), 0, u"vbcsExceptionFilter");
}

String ExceptionName(Long lCode) {
  return Reported(kExceptionName, String(), [&](String& result) {
    const auto code = static_cast<std::uint32_t>(lCode);
    for (const NamedCode& row : kNames) {
      if (row.code == code) {
        result = row.name;
        return;
      }
    }
    result = u"Unknown (&H" + EightHexDigits(code) + u")";
  });
}

}  // namespace TORVA35::modvbCodeShieldSupport
