// Modules that break the interface, with checking and without.
#include <cstring>

#include "tests/host/HostTesting.h"
#include "tests/host/fixtures/Faults.h"

namespace vantorel::host {
namespace {

using testing::loadModule;
using testing::modulePath;

class Misbehaving {
 public:
  explicit Misbehaving(bool checking) : module_(loadModule("fixture_misbehaving", {.checking = checking})) {}

  Result<FrameResult> render(Fault fault, Protocol protocol = Protocol::Smart) {
    Instance instance(module_);
    EXPECT_TRUE(instance.setCorners(Corners{{static_cast<double>(fault), 0}, {8, 0}, {0, 8}, {8, 8}}));
    FrameOptions options;
    options.protocol = protocol;
    options.placement = Placement::Centres;  // the corners tell the fixture what to do
    return instance.render(asConst(layer_.view()), {0, 0, 8, 8}, output.view(), options);
  }

  Image output = testing::dirty({8, 8}, Depth::Bits8);

 private:
  std::shared_ptr<const Module> module_;
  Image layer_ = testing::noise({8, 8}, Depth::Bits8);
};

TEST(MisuseTest, CheckingNamesEveryBreachOfTheInterface) {
  Misbehaving module(true);
  const struct {
    Fault fault;
    const char* named;
  } cases[] = {
      {kKeepsParameter, "parameter 2 was checked out and not checked in"},
      {kReturnsParameterTwice, "not checked out"},
      {kKeepsSuite, "suite \"PF World Suite\" version 2 was acquired and not released"},
      {kReturnsUnknownSuite, "without having been acquired"},
      {kWritesNextRow, "row 3 wrote outside of the row"},
      {kWritesPastRow, "row 3 wrote outside of the row"},
      {kWritesPastWorld, "wrote outside"},
      {kDisposesUnknownHandle, "handle"},
  };
  for (const Protocol protocol : {Protocol::Smart, Protocol::Plain}) {
    for (const auto& c : cases) {
      const auto result = module.render(c.fault, protocol);
      ASSERT_FALSE(result) << c.named;
      EXPECT_EQ(ErrorKind::Misuse, result.error().kind);
      EXPECT_EQ(protocol == Protocol::Smart ? "smart render" : "render", result.error().input);
      EXPECT_NE(std::string::npos, result.error().message.find(c.named)) << result.error().message;
    }
  }
  const auto result = module.render(kAsksUnknownLayer);
  ASSERT_FALSE(result);
  EXPECT_EQ(ErrorKind::Misuse, result.error().kind);
}

TEST(MisuseTest, FailuresOfTheModuleComeThroughWithTheirCodeAndMessage) {
  for (const bool checking : {false, true}) {
    Misbehaving module(checking);
    const auto failed = module.render(kFailsWithMessage);
    ASSERT_FALSE(failed);
    EXPECT_EQ(ErrorKind::EffectFailed, failed.error().kind);
    EXPECT_EQ(77, failed.error().code);
    EXPECT_EQ("It cannot be\ndone.", failed.error().message);

    const auto silent = module.render(kFailsSilently, Protocol::Plain);
    ASSERT_FALSE(silent);
    EXPECT_EQ("the effect's render failed with error code 77", silent.error().message);
    EXPECT_EQ(9, module.render(kFailsInRow).error().code);
    EXPECT_EQ(std::string(255, 'm'), module.render(kSendsEndlessMessage).error().message);
    EXPECT_EQ(ErrorKind::EffectFailed, module.render(kThrows).error().kind);
    EXPECT_EQ(ErrorKind::EffectFailed, module.render(kThrowsInRow).error().kind);

    // And the next frame is drawn as if nothing had been.
    for (const Fault fault : {kNoFault, kUsesWorlds}) {
      module.output = testing::dirty({8, 8}, Depth::Bits8);
      const auto drawn = module.render(fault);
      ASSERT_TRUE(drawn) << drawn.error().message;
      EXPECT_EQ(0, std::memcmp(module.output.view().row(7),
                               "\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7", 32));
    }
  }
}

TEST(MisuseTest, HandlesLeftAtSetDownAreReported) {
  std::vector<Error> failures;
  const auto keep = [&](const Error& error) { failures.push_back(error); };
  loadModule("fixture_leaks_handle", {.checking = true, .on_setdown_failure = keep});
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ(ErrorKind::Misuse, failures[0].kind);
  EXPECT_EQ(modulePath("fixture_leaks_handle"), failures[0].input);
  loadModule("vantorel", {.checking = true, .on_setdown_failure = keep});
  EXPECT_EQ(1u, failures.size());
}

TEST(MisuseTest, ModulesThatCannotBeUsedAreRefusedWithTheReason) {
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {
      {"/nowhere/vantorel.so", "cannot be loaded"},
      {"", "empty"},
      {modulePath("../CMakeCache.txt").substr(0, modulePath("../CMakeCache.txt").size() - 3), "cannot be loaded"},
      {modulePath("fixture_no_entry"), "does not export EffectMainExtra"},
      {modulePath("fixture_fails_setup"), "global setup: No licence to start."},
  };
  for (const auto& c : cases) {
    const auto module = Module::load(c.path);
    ASSERT_FALSE(module) << c.path;
    EXPECT_EQ(ErrorKind::ModuleUnusable, module.error().kind);
    EXPECT_EQ(c.path.empty() ? "module path" : c.path, module.error().input);
    EXPECT_NE(std::string::npos, module.error().message.find(c.reason)) << module.error().message;
    EXPECT_EQ(std::string::npos, module.error().message.find('\n'));
  }
  EXPECT_EQ(31, Module::load(modulePath("fixture_fails_setup")).error().code);
  EXPECT_FALSE(Module::load(modulePath("fixture_bad_table")));

  const auto three_points = loadModule("fixture_three_points");
  EXPECT_EQ(3u, three_points->info().parameters.size());
  Instance instance(three_points);
  Image layer = testing::noise({4, 4}, Depth::Bits8);
  Image output = testing::dirty({4, 4}, Depth::Bits8);
  EXPECT_EQ(ErrorKind::ModuleUnusable,
            instance.render(asConst(layer.view()), {0, 0, 4, 4}, output.view(), {}).error().kind);
}

}  // namespace
}  // namespace vantorel::host
