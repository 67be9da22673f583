#include <gtest/gtest.h>

#include "effect/Parameters.h"
#include "effect/StringTable.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr const char* kSetupFailed = "Vantorel could not be initialized.";
constexpr const char* kRegister = "register_string_table 4065";

void setupMessage(PF_OutData& out) {
  out.out_flags |= OUT_FLAG_SHOW_MESSAGE;
  std::strcpy(out.return_msg, kSetupFailed);
}

std::string bytesOf(const void* p, std::size_t count) {
  return {static_cast<const char*>(p), count};
}

}  // namespace

TEST(Dispatch, UnknownCommandsDoNothing) {
  ScriptedHost host;
  for (std::int32_t command = -3; command < 40; ++command) {
    if (command != 0 && command != 1 && command != 3 && command != 4 && command != 10 && command != 11 &&
        command != 23 && command != 24) {
      EXPECT_EQ(host.run(command), 0) << command;
    }
  }
  EXPECT_EQ(host.run(INT32_MIN), 0);
  EXPECT_EQ(host.log, Log{});
  EXPECT_TRUE(host.outIs());
}

TEST(StringTable, HasTheBytesThatHostsRead) {
  ScriptedHost host;
  host.run(CMD_GLOBAL_SETUP);
  struct Row {
    const char* text;
    std::uint64_t work[3];
  };
  struct Header {
    const char* tag;
    std::uint64_t rows;
    const Row* table;
    std::uint64_t zero;
  };
  const auto& header = *static_cast<const Header*>(host.registeredTable);
  EXPECT_STREQ(header.tag, "FX");
  EXPECT_EQ(header.rows, 7u);
  EXPECT_EQ(header.zero, 0u);
  const std::string texts[] = {
      "",           "Upper Left",  "Upper Right",
      "Lower Left", "Lower Right", "Vantorel cannot allocate a buffer larger than %d pixels in either dimension."};
  for (int i = 0; i < 6; ++i) {
    const std::string key = "$$$/KZ/Vantorel/LStr/000" + std::to_string(i) + "=";
    if (i > 0) {
      EXPECT_EQ(header.table[i].text, key + texts[i]);
    }
    EXPECT_EQ(bytesOf(header.table[i].work, 24), std::string(24, '\0')) << i;
  }
  EXPECT_EQ(header.table[6].text, nullptr);
  EXPECT_EQ(bytesOf(header.table[6].work, 24), std::string(16, '\xFF') + std::string(8, '\0'));
  EXPECT_EQ(FX_G_zref.header, host.registeredTable);
  EXPECT_EQ(bytesOf(&FX_G_zref, 16).substr(8), std::string(8, '\0'));

  // The About text, as the host hands it back and the effect formats it.
  const std::string about = header.table[0].text;
  const std::string start = "$$$/KZ/Vantorel/LStr/0000=";
  ASSERT_EQ(about.substr(0, start.size()), start);
  host.strings[0] = about.substr(start.size());
  EXPECT_EQ(host.run(CMD_ABOUT), 0);
  const std::string shown = host.out.return_msg;
  EXPECT_EQ(shown.find("Vantorel, v2.0#{cr}#{cr}"), 0u);
  const std::string end = "#{cr}#{cr}Distort an image to a convex quadrilateral.";
  EXPECT_EQ(shown.substr(shown.size() - end.size()), end);
  EXPECT_EQ(host.out.out_flags & OUT_FLAG_SHOW_MESSAGE, 0u);
}

TEST(GlobalSetup, DeclaresTheEffectAndKeepsTheHostsReference) {
  for (const bool hostAllocates : {true, false}) {
    ScriptedHost host;
    host.in.global_data = nullptr;
    host.handle = &host.samples;  // some other block of at least 8 bytes
    host.utilities.new_handle = hostAllocates ? host.utilities.new_handle : nullptr;
    host.utilities.dispose_handle = hostAllocates ? host.utilities.dispose_handle : nullptr;
    void* block[1] = {};
    host.handle = block;
    EXPECT_EQ(host.run(CMD_GLOBAL_SETUP), 0);
    ASSERT_NE(host.in.global_data, nullptr);
    EXPECT_EQ(*static_cast<void**>(*host.in.global_data), host.replacementTable);
    EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
      out.version = 0x00100600;
      out.global_data = host.in.global_data;
      out.out_flags = 0x02000240;
      out.out_flags2 |= 0x1000;
    }));
    EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);
    EXPECT_EQ(host.in.global_data, nullptr);
    EXPECT_EQ(host.out.global_data, nullptr);
    EXPECT_EQ(host.log, hostAllocates
                            ? (Log{kRegister, "new_handle 8", "unregister_string_table table", "dispose_handle handle"})
                            : (Log{kRegister, "unregister_string_table table"}));
    EXPECT_EQ(block[0], nullptr);
  }
}

TEST(GlobalSetup, LeavesNothingBehindOnFailure) {
  struct {
    const char* failing;
    bool referenceIsNull;
    std::int32_t code;
    Log log;
  } const cases[] = {
      {"register_string_table", false, 71, {kRegister, "unregister_string_table table"}},
      {"register_string_table", true, 71, {kRegister}},
      {"new_handle", false, ERR_OUT_OF_MEMORY, {kRegister, "new_handle 8", "unregister_string_table table"}},
      {"new_handle", true, ERR_OUT_OF_MEMORY, {kRegister, "new_handle 8"}},
  };
  for (const auto& c : cases) {
    ScriptedHost host;
    host.in.global_data = nullptr;
    host.replacementTable = c.referenceIsNull ? nullptr : host.replacementTable;
    host.fail(c.failing, 1, 71);
    host.fail("unregister_string_table", 1, 72);  // ignored
    EXPECT_EQ(host.run(CMD_GLOBAL_SETUP), c.code);
    EXPECT_EQ(host.log, c.log + Log{std::string("strcpy ") + kSetupFailed});
    EXPECT_TRUE(host.outIs(setupMessage)) << c.failing;
    EXPECT_EQ(host.in.global_data, nullptr);
  }
}

TEST(GlobalSetdown, EndsTheRegistrationWhateverTheHostSays) {
  ScriptedHost host;
  host.out.global_data = &host.handle;
  host.fail("unregister_string_table", 1, 73);
  EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);
  EXPECT_EQ(host.log, (Log{"unregister_string_table table", "dispose_handle handle"}));
  EXPECT_EQ(host.block[0], nullptr);
  EXPECT_TRUE(host.outIs([](PF_OutData& out) { out.global_data = nullptr; }));

  host.log.clear();
  EXPECT_EQ(host.run(CMD_GLOBAL_SETDOWN), 0);  // no block: nothing to undo
  EXPECT_EQ(host.log, Log{});
}

TEST(ParamsSetup, AddsTheFourPointsUntilOneIsRefused) {
  const std::string names[] = {"Upper Left", "Upper Right", "Lower Left", "Lower Right"};
  constexpr std::int32_t kDefaults[4][2] = {{0, 0}, {0x640000, 0}, {0, 0x640000}, {0x640000, 0x640000}};
  for (int refused = 1; refused <= 5; ++refused) {
    ScriptedHost host;
    host.fail("add_param", refused, 81);
    EXPECT_EQ(host.run(CMD_PARAMS_SETUP), refused <= 4 ? 81 : 0);
    EXPECT_TRUE(host.outIs([](PF_OutData& out) { out.param_count = 5; }));
    ASSERT_EQ(host.added.size(), static_cast<std::size_t>(std::min(refused, 4)));
    Log log;
    for (std::size_t i = 0; i < 4; ++i) {
      log = log + Log{"lookup_string table " + std::to_string(i + 1) + " 0 null", "strcpy " + names[i]};
      if (i < host.added.size()) {
        log.push_back("add_param fx -1 " + names[i]);
        PF_ParamDef expected;
        std::memset(static_cast<void*>(&expected), 0, sizeof expected);
        expected.param_type = 6;
        std::strcpy(expected.name, names[i].c_str());
        const auto* d = kDefaults[i];
        expected.value.point = {d[0], d[1], {}, d[0], d[1]};
        EXPECT_EQ(bytesOf(&host.added[i], offsetof(PF_ParamDef, name)),
                  bytesOf(&expected, offsetof(PF_ParamDef, name)));
        EXPECT_EQ(host.added[i].param_flags, 0);
        EXPECT_STREQ(host.added[i].name, expected.name);
        EXPECT_EQ(bytesOf(&host.added[i].value.point, sizeof(PF_PointValue)),
                  bytesOf(&expected.value.point, sizeof(PF_PointValue)));
      }
    }
    EXPECT_EQ(host.log, log);
  }
}

TEST(Corners, AreReadOnceRoundAndShiftedAtTheEnd) {
  ScriptedHost host;
  host.setCorners({{0, 0}, {10, 0}, {10, 10}, {0, 10.5}});
  M_Vector2T<double> c[4];
  EXPECT_EQ(GetCornerParams(&host.in, c, 7, -3), 0);
  EXPECT_EQ(host.log, kReadCorners);
  const double expected[4][2] = {{7, -3}, {17, -3}, {17, 7}, {7, 7.5}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(c[i].x, expected[i][0]);
    EXPECT_EQ(c[i].y, expected[i][1]);
  }
  for (std::size_t failing = 0; failing < 8; ++failing) {
    ScriptedHost broken;
    broken.setCorners({{-1, 1.5}, {2, 2}, {3, 3}, {4, 4}});
    broken.fail(failing % 2 == 0 ? "checkout_param" : "checkin_param", static_cast<int>(failing / 2) + 1, 55);
    M_Vector2T<double> p[4] = {{9, 9}, {9, 9}, {9, 9}, {9, 9}};
    EXPECT_EQ(GetCornerParams(&broken.in, p, 100, 100), 55);
    EXPECT_EQ(broken.log, Log(kReadCorners.begin(), kReadCorners.begin() + static_cast<int>(failing) + 1));
    const double values[4][2] = {{-1, 1.5}, {2, 2}, {3, 3}, {4, 4}};
    for (std::size_t i = 0; i < 4; ++i) {
      const bool wasRead = 2 * i < failing;
      EXPECT_EQ(p[i].x, wasRead ? values[i][0] : 9) << failing << " " << i;
      EXPECT_EQ(p[i].y, wasRead ? values[i][1] : 9) << failing << " " << i;
    }
    EXPECT_TRUE(broken.outIs());
  }
}
