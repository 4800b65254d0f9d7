#include "torva35/merge/Component.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <typeinfo>
#include <vector>

#include "component_user.h"

// This program is not linked with the library: all that it knows of it comes through the component's calls.
namespace TORVA35 {
namespace {

class OpenLibrary {
 public:
  explicit OpenLibrary(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(handle_, nullptr) << dlerror();
  }
  ~OpenLibrary() { dlclose(handle_); }

  template <class Function>
  Function* Get(const char* name) {
    return reinterpret_cast<Function*>(dlsym(handle_, name));
  }

 private:
  void* handle_;
};

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

TEST(Component, GivesFactoriesByName) {
  OpenLibrary library(TEST_LIBRARY);
  const auto getClassObject = library.Get<decltype(DllGetClassObject)>("DllGetClassObject");
  const ClassFactory* factory = nullptr;
  for (const std::u16string name : {u"clsTORVA", u"clsTORVATest", u"clsTORVATestQuestion", u"clsTORVATestStrings",
                                    u"clsTORVATestCorrect", u"clsTORVATestSequence"}) {
    ASSERT_EQ(getClassObject(name.c_str(), &factory), kComponentOk);
    const Ref<Object> object = factory->CreateInstance();
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
      const auto create = [&](const char16_t* name) {
        const ClassFactory* factory = nullptr;
        library.Get<decltype(DllGetClassObject)>("DllGetClassObject")(name, &factory);
        return factory->CreateInstance();
      };
      const auto canUnloadNow = library.Get<decltype(DllCanUnloadNow)>("DllCanUnloadNow");
      EXPECT_EQ(canUnloadNow(), 0);
      Ref<Object> engine = create(u"clsTORVA");
      Ref<Object> test = create(u"clsTORVATest");
      EXPECT_EQ(canUnloadNow(), 1);
      EXPECT_NE(Handlers(), handlersBefore);
      const std::unique_ptr<std::string> seen(
          user.Get<decltype(UseComponent)>("UseComponent")(*engine, *test, &errorObjectReleased));
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
