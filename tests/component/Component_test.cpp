#include "torva35/merge/Component.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <typeinfo>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <signal.h>
#endif

// This program is not linked with the library: all that it knows of it comes through the component's calls.
namespace TORVA35 {
namespace {

#if defined(_WIN32)

void* Open(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return LoadLibraryA(path.c_str());
}
void Close(void* library) {
  FreeLibrary(static_cast<HMODULE>(library));
}
void* Find(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}
bool IsLoaded() {
  return GetModuleHandleA("torva35.dll") != nullptr;
}

// What stands for faults that nobody handles.
std::vector<void*> Handlers() {
  const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
  SetUnhandledExceptionFilter(filter);
  return {reinterpret_cast<void*>(filter)};
}
constexpr bool kPutsUpHandlers = false;

#else

void* Open(const std::string& path) {
  return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}
void Close(void* library) {
  dlclose(library);
}
void* Find(void* library, const char* name) {
  return dlsym(library, name);
}
bool IsLoaded() {
  return dlopen(TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

std::vector<void*> Handlers() {
  std::vector<void*> handlers;
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    handlers.push_back(reinterpret_cast<void*>(action.sa_sigaction));
  }
  return handlers;
}
constexpr bool kPutsUpHandlers = true;

#endif

struct OpenLibrary {
  explicit OpenLibrary(const char* path) : handle(Open(path)) { EXPECT_NE(handle, nullptr) << path; }
  ~OpenLibrary() { Close(handle); }

  template <class Function>
  Function* Get(const char* name) {
    return reinterpret_cast<Function*>(Find(handle, name));
  }
  Ref<Object> Create(const char16_t* name) {
    const ClassFactory* factory = nullptr;
    Get<decltype(DllGetClassObject)>("DllGetClassObject")(name, &factory);
    return factory == nullptr ? nullptr : factory->CreateInstance();
  }
  void* const handle;
};

TEST(Component, GivesFactoriesByName) {
  OpenLibrary library(TEST_LIBRARY);
  const auto getClassObject = library.Get<decltype(DllGetClassObject)>("DllGetClassObject");
  const ClassFactory* factory = nullptr;
  for (const std::u16string name : {u"clsTORVA", u"clsTORVATest", u"clsTORVATestQuestion", u"clsTORVATestStrings",
                                    u"clsTORVATestCorrect", u"clsTORVATestSequence"}) {
    const Ref<Object> object = library.Create(name.c_str());
    ASSERT_NE(object, nullptr);
    const Object& made = *object;
    const std::string type = typeid(made).name();
    EXPECT_TRUE(type.ends_with(std::string(name.begin(), name.end()) + "E")) << type;
  }
  for (const char16_t* name : {u"clsTORVATests", u"CLSTORVA", u"", static_cast<const char16_t*>(nullptr)}) {
    EXPECT_EQ(getClassObject(name, &factory), static_cast<Long>(0x80040111));
    EXPECT_EQ(factory, nullptr);
  }
  EXPECT_EQ(getClassObject(u"clsTORVA", nullptr), kClassNotAvailable);

  EXPECT_EQ(library.Get<decltype(DllUnregisterServer)>("DllUnregisterServer")(), 0);
  EXPECT_EQ(getClassObject(u"clsTORVA", &factory), kClassNotAvailable);
  EXPECT_EQ(library.Get<decltype(DllRegisterServer)>("DllRegisterServer")(), 0);
  EXPECT_EQ(getClassObject(u"clsTORVA", &factory), kComponentOk);
}

TEST(Component, CanBeUsedAndUnloadedAgainAndAgain) {
  const std::vector<void*> handlersBefore = Handlers();
  for (int i = 0; i < 20; ++i) {
    bool errorObjectReleased = false;
    {
      // Closed last: the error object's code is in there, and the library holds that object until it is unloaded.
      OpenLibrary user(TEST_USER);
      OpenLibrary library(TEST_LIBRARY);
      const auto canUnloadNow = library.Get<decltype(DllCanUnloadNow)>("DllCanUnloadNow");
      EXPECT_EQ(canUnloadNow(), 0);
      Ref<Object> engine = library.Create(u"clsTORVA");
      Ref<Object> test = library.Create(u"clsTORVATest");
      EXPECT_EQ(canUnloadNow(), 1);
      EXPECT_EQ(Handlers() != handlersBefore, kPutsUpHandlers);
      const std::unique_ptr<std::string> seen(
          user.Get<std::string*(Object&, Object&, bool*)>("UseComponent")(*engine, *test, &errorObjectReleased));
      EXPECT_EQ(*seen, "Final exam, 9 in TORVA35 - clsTORVATests.Remove");
      engine.reset();
      EXPECT_EQ(canUnloadNow(), 1);
      test.reset();
      EXPECT_EQ(canUnloadNow(), 0);
      EXPECT_FALSE(errorObjectReleased);
    }
    EXPECT_TRUE(errorObjectReleased);
    EXPECT_FALSE(IsLoaded());
    EXPECT_EQ(Handlers(), handlersBefore);
  }
}

}  // namespace
}  // namespace TORVA35
