#include <gtest/gtest.h>

#include <string>

#include "base/Environment.h"

namespace {

using qro_base::Environment;

class CountedLoader : public qro_base::IResourceLoader {
 public:
  explicit CountedLoader(int& destroyed) : destroyed_(destroyed) {}
  ~CountedLoader() override { ++destroyed_; }

 private:
  int& destroyed_;
};

// Every service and path setter goes through one ownership rule: the
// replaced object is destroyed, the last one goes with the environment.
TEST(Environment, SettersDestroyTheObjectTheyReplace) {
  int destroyed = 0;
  {
    Environment env;
    env.SetResourceLoader(new CountedLoader(destroyed));
    auto* second = new CountedLoader(destroyed);
    env.SetResourceLoader(second);
    EXPECT_EQ(env.GetResourceLoader(), second);
    EXPECT_EQ(destroyed, 1);
    // The leak checker of the sanitizer build would report a lost string.
    env.SetClipboardPath(new std::string("/data/old/"));
    env.SetClipboardPath(new std::string("/data/new/"));
    EXPECT_EQ(*env.GetClipboardPath(), "/data/new/");
  }
  EXPECT_EQ(destroyed, 2);
  Environment env;
  env.SetResourceLoader(new CountedLoader(destroyed));
  env.SetResourceLoader(nullptr);
  EXPECT_EQ(destroyed, 3);
}

}  // namespace
