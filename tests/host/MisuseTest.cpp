// Modules that break the interface, with checking and without.
#include <cstring>
#include <stdexcept>

#include "host/checking/RowGuard.h"
#include "tests/host/ScriptedModule.h"

namespace vantorel::host {
namespace {

Result<FrameResult> render(const Script& script, bool checking, Image& output, Protocol protocol = Protocol::Smart) {
  const Image layer = noise({8, 8}, Depth::Bits8);
  return loadScripted(script, {.checking = checking}).and_then([&](const auto& module) {
    // Without corners there is nothing to place.
    return Instance(module).render(layer.view(), {0, 0, 8, 8}, output.view(),
                                   {.placement = Placement::Centres, .protocol = protocol});
  });
}

std::int32_t checkOut(const Call& call, PF_ParamDef* param) {
  return call.in->checkout_param(call.in->effect_ref, 2, 0, 1, 1, param);
}

std::int32_t returnTwice(const Call& call) {
  static PF_ParamDef param;
  checkOut(call, &param);
  call.in->checkin_param(call.in->effect_ref, &param);
  return call.in->checkin_param(call.in->effect_ref, &param);
}

std::int32_t disposeOfUnknownHandle(const Call& call) {
  void* block = nullptr;
  call.in->utility_callbacks->dispose_handle(&block);
  return 0;
}

std::int32_t writeBelow(const Call& call) {
  std::memset(static_cast<char*>(call.output->data) + call.output->row_bytes * call.output->height, 99, 4);
  return 0;
}

// Writes that many pixels to the right of a row's first.
std::int32_t writeAt(PF_Pixel8* row, int pixels) {
  row[pixels].red = 99;
  return 0;
}

TEST(MisuseTest, CheckingNamesEveryBreachOfTheInterface) {
  static PF_ParamDef param;
  static const void* suite = nullptr;
  const auto keep_suite = [](const Call& call) {
    return call.in->suite_provider->acquire(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION, &suite);
  };
  const auto release_suite = [](const Call& call) {
    return call.in->suite_provider->release(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION);
  };
  const struct {
    const char* named;
    Script script;
  } cases[] = {
      {"parameter 2 was checked out and not checked in", {.draw = [](const Call& c) { return checkOut(c, &param); }}},
      {"not checked out", {.draw = returnTwice}},
      {"suite \"PF World Suite\" version 2 was acquired and not released", {.draw = keep_suite}},
      {"without having been acquired", {.draw = release_suite}},
      {"row 3 wrote outside the row",
       {.in_row_3 = [](auto* row, const auto& world) { return writeAt(row, world.row_bytes / 4); }}},
      {"row 3 wrote outside the row",
       {.in_row_3 = [](auto* row, const auto& world) { return writeAt(row, world.width); }}},
      {"wrote outside", {.draw = writeBelow}},
      {"handle", {.draw = disposeOfUnknownHandle}},
  };
  Image output = dirty({8, 8}, Depth::Bits8);
  for (const Protocol protocol : {Protocol::Smart, Protocol::Plain}) {
    for (const auto& c : cases) {
      const auto result = render(c.script, true, output, protocol);
      const char* const command = protocol == Protocol::Smart ? "smart render" : "render";
      EXPECT_TRUE(isError(result, ErrorKind::Misuse, command, c.named)) << c.named;
    }
  }
  EXPECT_EQ(ErrorKind::Misuse, render({.checkout_id = 5}, true, output).error().kind);
}

TEST(MisuseTest, AGuardThatChangedIsReportedAtTheFramesEnd) {
  for (const int row : {-1, 4}) {
    auto guard = RowGuard::create({6, 4}, Depth::Bits8);
    ASSERT_TRUE(guard);
    guard->remember();
    *(guard->world().data + row * guard->world().row_bytes) = std::byte{1};
    CallLedger ledger;
    guard->finish(false, ledger);
    EXPECT_NE(std::string::npos, ledger.misuse().find("at row " + std::to_string(row))) << ledger.misuse();
  }
}

// A world of the module's own, filled in part with a colour and read back.
std::int32_t useWorlds(const Call& call) {
  PF_InData* const in = call.in;
  const void* table = nullptr;
  in->suite_provider->acquire(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION, &table);
  const auto& suite = *static_cast<const PF_WorldSuite2*>(table);
  PF_LayerDef world{};
  std::int32_t err = suite.new_world(in->effect_ref, 5, 4, true, PF_PIXEL_FORMAT_ARGB16, &world);
  std::int32_t format = 0;
  if (err == ERR_NONE) {
    err = suite.get_pixel_format(&world, &format);
  }
  in->suite_provider->release(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION);
  if (err != ERR_NONE || format != PF_PIXEL_FORMAT_ARGB16) {
    return 1000;
  }
  const PF_Pixel16 color{1, 2, 3, 4};
  const M_LRect beyond(3, 2, 100, 100);
  in->utility_callbacks->fill(in->effect_ref, &color, &beyond, &world);
  const auto at = [&](int x, int y) {
    return reinterpret_cast<const PF_Pixel16*>(static_cast<const char*>(world.data) + world.row_bytes * y)[x];
  };
  return at(4, 3).blue == 4 && at(3, 2).alpha == 1 && at(2, 2).alpha == 0 && at(4, 1).blue == 0 ? ERR_NONE : 1001;
}

// The result is the length of what fits after the message's first 200 bytes.
std::int32_t sendEndlessMessage(const Call& call) {
  const std::string endless(5000, 'm');
  call.out->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  call.in->utility_callbacks->sprintf(call.out->return_msg, "%s", endless.c_str());
  return call.in->utility_callbacks->sprintf(call.out->return_msg + 200, "%s", endless.c_str());
}

std::int32_t throwError() {
  throw std::runtime_error("thrown by the module");
}

TEST(MisuseTest, FailuresOfTheModuleComeThroughWithTheirCodeAndMessage) {
  const auto fail_with_message = [](const Call& c) { return failWithMessage(c, "It cannot be#{cr}done.", 77); };
  const struct {
    Script script;
    std::int32_t code;
    std::string message;
  } cases[] = {
      {{.draw = fail_with_message}, 77, "It cannot be\ndone."},
      {{.draw = [](auto&) { return 77; }}, 77, "the effect's render failed with error code 77"},
      {{.draw = [](auto&) { return ERR_OUT_OF_MEMORY; }}, 4, "the effect's render failed with error code 4"},
      {{.draw = sendEndlessMessage}, 55, std::string(255, 'm')},
      {{.draw = [](auto&) { return throwError(); }}, 602, "the effect's render failed with error code 602"},
      {{.in_row_3 = [](auto*, auto&) { return 9; }}, 9, "the effect's render failed with error code 9"},
      {{.in_row_3 = [](auto*, auto&) { return throwError(); }}, 602, "the effect's render failed with error code 602"},
  };
  Image output = dirty({8, 8}, Depth::Bits8);
  for (const bool checking : {false, true}) {
    for (const auto& c : cases) {
      const auto result = render(c.script, checking, output, Protocol::Plain);
      ASSERT_FALSE(result) << c.message;
      EXPECT_EQ(c.code == ERR_OUT_OF_MEMORY ? ErrorKind::OutOfMemory : ErrorKind::EffectFailed, result.error().kind);
      EXPECT_EQ(c.code, result.error().code);
      EXPECT_EQ(c.message, result.error().message);
    }
    for (const Script& script : {Script{}, Script{.draw = useWorlds}}) {
      output = dirty({8, 8}, Depth::Bits8);
      const auto drawn = render(script, checking, output);
      ASSERT_TRUE(drawn) << drawn.error().message;
      EXPECT_EQ(std::string(32, '\7'), std::string(reinterpret_cast<const char*>(output.view().row(7)), 32));
    }
  }
}

TEST(MisuseTest, HandlesLeftAtSetDownAreReported) {
  std::vector<Error> failures;
  const auto keep = [&](const Error& error) { failures.push_back(error); };
  const auto leak = [](const Call& call) {
    return call.in->utility_callbacks->new_handle(100) != nullptr ? ERR_NONE : ERR_OUT_OF_MEMORY;
  };
  EXPECT_TRUE(loadScripted({.setup = leak}, {.checking = true, .on_setdown_failure = keep}));
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ(ErrorKind::Misuse, failures[0].kind);
  EXPECT_EQ("scripted", failures[0].input);
  EXPECT_TRUE(Module::load(kEffectPath, {.checking = true, .on_setdown_failure = keep}));
  EXPECT_EQ(1u, failures.size());
}

TEST(MisuseTest, ModulesThatCannotBeUsedAreRefusedWithTheReason) {
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {
      {"/nowhere/vantorel.so", "cannot be loaded"},
      {"", "empty"},
      {VANTOREL_TEST_NO_LIBRARY, "cannot be loaded"},
      {VANTOREL_TEST_OTHER_LIBRARY, "does not export EffectMainExtra"},
  };
  for (const auto& c : cases) {
    const auto module = Module::load(c.path);
    const std::string input = c.path.empty() ? "module path" : c.path;
    ASSERT_TRUE(isError(module, ErrorKind::ModuleUnusable, input, c.reason)) << c.path;
    EXPECT_EQ(std::string::npos, module.error().message.find('\n'));
  }
  const auto unlicensed =
      loadScripted({.setup = [](const Call& call) { return failWithMessage(call, "No licence to start.", 31); }});
  ASSERT_TRUE(isError(unlicensed, ErrorKind::ModuleUnusable, "scripted"));
  EXPECT_EQ("global setup: No licence to start.", unlicensed.error().message);
  EXPECT_EQ(31, unlicensed.error().code);
  EXPECT_EQ(ErrorKind::OutOfMemory, loadScripted({.setup = [](auto&) { return ERR_OUT_OF_MEMORY; }}).error().kind);
  EXPECT_FALSE(loadScripted({.setup = [](const Call& call) {
    static FX_StringRow row{"key=text", {}};
    static FX_StringHeader endless{"FX", ~std::uint64_t{0}, &row, 0};
    void* table = &endless;
    return call.in->register_string_table(&table, PF_STRING_TABLE_FORMAT);
  }}));

  Instance three_points(*loadScripted({.points = 3}));
  Image pixels = dirty({4, 4}, Depth::Bits8);
  const Image layer = noise({4, 4}, Depth::Bits8);
  EXPECT_EQ(ErrorKind::ModuleUnusable, three_points.render(layer.view(), {0, 0, 4, 4}, pixels.view(), {}).error().kind);
}

}  // namespace
}  // namespace vantorel::host
